#pragma once

/// Has Qt keep no pictures for later. To be called once the application object is there; main thread only.
///
/// Symptom: the style keeps the arrow of each entry with a submenu under a name of its own each time the entry is
///   selected. A session of much use grows by megabytes, and a timer that looks after them wakes every session up.
/// Of: Qt 6.4 to 6.11, QCommonStyle and QPixmapCache. No report found.
/// Left out: up to 10 MB a session, and 2 wake-ups a minute while there are pictures. Nothing that is drawn here is
///   worth keeping.
/// Still needed? WorkaroundNeed.PictureCache tells.
void keepQtFromCachingPictures();

#pragma once

/// Turns Qt's pixmap cache off. To be called once the application object is there; main thread only.
///
/// Symptom: each time that an entry with a submenu is selected, the style puts its arrow into the pixmap cache under a
///   new key. A session of much use grows by megabytes, and the timer that cleans the cache up wakes every session.
/// Of: Qt 6.4 to 6.11, QCommonStyle and QPixmapCache. No report found.
/// Left out: up to 10 MB a session, and 2 wake-ups a minute while there are pixmaps in the cache. Nothing that is drawn
///   here is worth keeping.
/// Still needed? WorkaroundMemory.PixmapCache tells.
void keepQtFromCachingPixmaps();

#pragma once

class QMenu;

/// Takes back what Qt has noted of a menu's focus. To be called when the menu has closed; main thread only.
///
/// Symptom: each time that a menu opens, its window is connected to the application object once more, to tell of where
///   its focus is, and no connection is undone: the window is hidden before it could be.
/// Of: Qt, QGuiApplicationPrivate::processActivatedEvent; seen with 6.4 and 6.8. No report found.
/// Left out: 88 bytes a menu, for good, which keep the heap around them from being given back: 240 for each question
///   that is chosen in one.
/// Still needed? WorkaroundNeed.MenuFocus tells.
void forgetFocusOf(const QMenu &menu);

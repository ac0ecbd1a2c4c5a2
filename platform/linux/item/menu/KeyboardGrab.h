#pragma once

#include <QObject>

#include <functional>

/// Calls `proceed` from the event loop as soon as no other program has the whole keyboard for itself, and after two
/// seconds at the latest, or when a menu of this program has come; not at all when `context` has gone by then. A window
/// manager has it while a key is held down that starts a program, and a menu that opens meanwhile would hear no key
/// until it is closed. Needs X; main thread only.
void whenKeyboardIsFree(QObject *context, std::function<void()> proceed);

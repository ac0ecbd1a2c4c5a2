#pragma once

#include <QWidget>

/// Where windows lie among those of all programs. They are top-level windows that are shown. Main thread only.

/// Puts the window in front of all others, now, whether or not the program is active. It does not get the keyboard by
/// that.
void bringToFront(QWidget &window);

/// Puts the window in front of all others and asks for the keyboard for it: once, since it is taken from another.
void bringToFrontWithKeyboard(QWidget &window);

/// Keeps the window above those of other programs that are always in front, as the status items are, where the window
/// system has a level for that.
void keepAtStatusLevel(QWidget &window);

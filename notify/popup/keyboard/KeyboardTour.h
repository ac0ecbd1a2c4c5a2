#pragma once

#include <qnamespace.h>

/// The way through a pop-up by keyboard: its stops are the links of its text and then its buttons, each by its place in
/// that row.

/// What a key is for while a pop-up has the keyboard.
enum class TourKey { Nothing, Next, Previous, Press, PageUp, PageDown, GiveBack };

/// `key` as QKeyEvent has it. Nothing with Control, Alt or the logo key held down: that is a shortcut of somebody's.
[[nodiscard]] TourKey tourKey(int key, Qt::KeyboardModifiers modifiers);

/// The stop after `stop` out of `stops`, of which there is at least one; after the last comes the first, and the other
/// way round. All keys but two leave it where it is.
[[nodiscard]] int stopAfter(int stop, TourKey key, int stops);

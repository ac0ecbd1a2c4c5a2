#pragma once

#include <xcb/xcb.h>

/// What a key means to the status item when it has the keyboard.
enum class PressedKey {
    Other,
    Open,    ///< Return, Enter, Space or Menu: opens the menu.
    Next,    ///< Tab: the keyboard goes to what follows in the panel.
    Previous ///< Tab with Shift: to what comes before.
};

/// By the first symbol of the key on the keyboard as it is now. Asks the X server; main thread only.
[[nodiscard]] PressedKey pressedKey(const xcb_key_press_event_t &press);

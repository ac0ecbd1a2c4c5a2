#pragma once

#include "tests/session/support/XClient.h"

#include <QRect>

/// A window of some other program.
class OtherWindow final : public XClient
{
public:
    /// Shows it there, in front of all that lets itself be covered.
    OtherWindow(const PrivateXServer &server, const QRect &geometry);

    [[nodiscard]] xcb_window_t id() const { return m_window; }
    // All return once the server has done it.
    void raise();
    /// Asks the window manager to keep other windows so far below the top of the screen in its columns, as a panel
    /// does.
    void keepOthersBelow(std::uint32_t pixels);
    /// Takes the keyboard without asking any window manager.
    void takeKeyboard();
    /// How many presses of keys it has heard of so far.
    [[nodiscard]] int keysHeard();
    /// False while another program has the whole keyboard for itself.
    [[nodiscard]] bool canHoldKeyboard();

private:
    void waitForServer();

    xcb_window_t m_window;
    const QRect m_geometry;
    int m_keysHeard = 0;
};

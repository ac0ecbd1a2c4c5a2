#pragma once

#include "tests/session/support/XClient.h"

#include <QPoint>

/// The user's hands: pointer and keys of a private X server, through its XTEST extension, so that every grab, focus and
/// stacking rule applies as it does to real input.
class XInput final : public XClient
{
public:
    using XClient::XClient;

    void move(QPoint to);
    void press();
    void release();
    /// Moves there, then presses and releases the primary button.
    void click(QPoint at);
    /// Presses and releases the key that bears the symbol (XK_Escape and so on), so many times.
    void key(xcb_keysym_t symbol, int times = 1);
    /// True when no program holds the pointer, as one does while its menu is open: what is clicked gets the click. A
    /// menu lets go of it a moment after it has gone from the screen.
    [[nodiscard]] bool isFree() const;

    /// Until letServerGo() the X server does nothing that another program asks for; what the user does still reaches
    /// them. Whoever waits for its answer meanwhile waits until then.
    void holdServer();
    void letServerGo();

private:
    void waitForServer() const;
    void fake(std::uint8_t type, std::uint8_t detail, QPoint position = {});
    [[nodiscard]] xcb_keycode_t keycode(xcb_keysym_t symbol) const;
};

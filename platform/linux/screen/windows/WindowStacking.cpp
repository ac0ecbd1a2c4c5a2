#include "platform/screen/WindowStacking.h"

#include "platform/linux/include/XConnection.h"
#include "platform/linux/screen/windows/WindowsOfOthers.h"

void bringToFront(QWidget &window)
{
    window.raise();
    // Qt sends requests off when it next reads events, and a program in the background may get none.
    if (xcb_connection_t *x = XConnection::get()) {
        xcb_flush(x);
    }
}

void bringToFrontWithKeyboard(QWidget &window)
{
    window.raise();
    window.activateWindow();
}

void keepAtStatusLevel(QWidget &window)
{
    // A window that no window manager knows lies above those that one manages.
    if (XConnection::get() && !WindowsOfOthers::areManaged()) {
        new WindowsOfOthers(window);
    }
}

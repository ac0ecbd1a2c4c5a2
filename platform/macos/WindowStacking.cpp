#include "platform/screen/WindowStacking.h"

#include "platform/macos/NativeWindows.h"

void bringToFront(QWidget &window)
{
    if (!NativeWindows::areThere()) {
        window.raise();
        return;
    }
    NativeWindows::orderFront(window.winId()); // QWidget::raise() would make the program the active one each time.
}

void bringToFrontWithKeyboard(QWidget &window)
{
    bringToFront(window);
    if (NativeWindows::areThere()) {
        NativeWindows::activate(window.winId());
    } else {
        window.activateWindow();
    }
}

void keepAtStatusLevel(QWidget &window)
{
    if (NativeWindows::areThere()) {
        NativeWindows::setStatusLevel(window.winId());
    }
}

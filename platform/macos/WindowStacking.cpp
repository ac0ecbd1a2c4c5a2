#include "platform/screen/WindowStacking.h"

#include "platform/macos/NativeWindows.h"

// Not QWidget::raise(), which makes the program the active one each time.
void bringToFront(QWidget &window)
{
    NativeWindows::orderFront(window.winId());
}

void bringToFrontWithKeyboard(QWidget &window)
{
    NativeWindows::orderFront(window.winId());
    NativeWindows::activate(window.winId());
}

void keepAtStatusLevel(QWidget &window)
{
    NativeWindows::setStatusLevel(window.winId());
}

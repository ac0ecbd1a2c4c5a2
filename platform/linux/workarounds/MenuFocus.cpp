#include "platform/linux/workarounds/MenuFocus.h"

#include <QGuiApplication>
#include <QMenu>
#include <QWindow>

void forgetFocusOf(const QMenu &menu)
{
    if (const QWindow *const window = menu.windowHandle()) {
        QObject::disconnect(window, &QWindow::focusObjectChanged, qGuiApp, nullptr);
    }
}

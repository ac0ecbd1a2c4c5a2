#include "platform/linux/workarounds/LostWindows.h"

#include "platform/LogCategories.h"
#include "platform/linux/include/XConnection.h"

#include <QApplication>
#include <QPointer>
#include <QWidget>

#include <algorithm>

namespace
{

/// The widget that the user has seen in that window; null when it is none, or Qt's own doing that it is gone.
QWidget *shownWidgetOf(xcb_window_t window)
{
    const QWidgetList widgets = QApplication::topLevelWidgets();
    const auto it = std::find_if(widgets.cbegin(), widgets.cend(), [window](const QWidget *widget) {
        return widget->isVisible() && !widget->testAttribute(Qt::WA_DontShowOnScreen) &&
               widget->internalWinId() == window;
    });
    return it == widgets.cend() ? nullptr : *it;
}

} // namespace

void LostWindows::close()
{
    static QPointer<LostWindows> instance;
    if (!instance && XConnection::get()) {
        instance = new LostWindows(QCoreApplication::instance());
    }
}

LostWindows::LostWindows(QObject *parent)
    : QObject(parent)
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

bool LostWindows::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if (XConnection::eventType(*event) == XCB_DESTROY_NOTIFY) {
        if (QWidget *const widget =
                shownWidgetOf(reinterpret_cast<const xcb_destroy_notify_event_t *>(event)->window)) {
            qCDebug(agentLog, "another program has destroyed a window: it is closed");
            // Not from inside Qt's event filters: who is told may begin a loop of its own.
            QMetaObject::invokeMethod(widget, &QWidget::close, Qt::QueuedConnection);
        }
    }
    return false;
}

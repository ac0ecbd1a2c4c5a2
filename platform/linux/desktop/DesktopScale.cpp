#include "platform/linux/desktop/DesktopScale.h"

#include "platform/LogCategories.h"
#include "platform/linux/desktop/DesktopRules.h"
#include "platform/linux/desktop/StartScale.h"
#include "platform/linux/desktop/XResources.h"
#include "platform/linux/include/XConnection.h"
#include "platform/linux/workarounds/RootProperties.h"

#include <QApplication>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace
{

void closeOpenMenus()
{
    while (QWidget *const popUp = QApplication::activePopupWidget()) {
        popUp->close();
        if (QApplication::activePopupWidget() == popUp) {
            return;
        }
    }
}

/// To the window manager a dialog has a size in pixels, and some let none have another. Message pop-ups are none of its
/// windows: they lay themselves out anew.
QWidgetList hiddenDialogs()
{
    QWidgetList dialogs;
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && (window->windowType() == Qt::Dialog || window->windowType() == Qt::Window)) {
            window->hide();
            window->setAttribute(Qt::WA_Moved, false); // Where it was is another place by now.
            dialogs.append(window);
        }
    }
    return dialogs;
}

/// Qt keeps the window of what it has hidden, with its size in pixels.
void releaseHiddenWindows()
{
    for (QWindow *const window : QGuiApplication::topLevelWindows()) {
        if (!window->isVisible() && window->handle()) {
            window->destroy();
        }
    }
}

} // namespace

DesktopScale::DesktopScale()
    : m_scale(StartScale::announced())
{
    if (m_scale && XConnection::get()) {
        m_window.emplace([this] { tellQtOfScreens(); });
        QCoreApplication::instance()->installNativeEventFilter(this);
        connect(qGuiApp, &QGuiApplication::screenAdded, this, &DesktopScale::apply);
        setScale();
    }
}

void DesktopScale::follow(const XSettings &settings)
{
    m_settings = settings;
    update();
}

bool DesktopScale::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if (XConnection::eventType(*event) == XCB_PROPERTY_NOTIFY && !saysDotsPerInch(m_settings)) {
        const auto *notify = reinterpret_cast<const xcb_property_notify_event_t *>(event);
        if (notify->window == XConnection::screen()->root && notify->atom == XCB_ATOM_RESOURCE_MANAGER) {
            QMetaObject::invokeMethod(this, &DesktopScale::update, Qt::QueuedConnection);
        }
    }
    return false;
}

void DesktopScale::update()
{
    if (!m_window) {
        return;
    }
    const double resourceDpi = saysDotsPerInch(m_settings) ? 0 : xftDpi(askForXResources(XConnection::get()));
    const double scale = desktopScale(m_settings, resourceDpi);
    if (scale == *m_scale) {
        return;
    }
    qCDebug(agentLog, "the desktop's scale is %g", scale);
    m_scale = scale;
    closeOpenMenus();
    const QWidgetList dialogs = hiddenDialogs();
    releaseHiddenWindows();
    apply();
    for (QWidget *const dialog : dialogs) {
        dialog->show();
    }
}

void DesktopScale::apply()
{
    setScale();
    tellQtOfScreens();
}

void DesktopScale::setScale()
{
    for (QScreen *const screen : QGuiApplication::screens()) {
        // Qt itself keeps there what it is told at its start of screens without a name, and asks it each time.
        screen->setProperty("_q_scaleFactor", *m_scale);
    }
}

void DesktopScale::tellQtOfScreens() const
{
    // Qt measures its screens anew when the root window has changed, and has no other way to be told.
    xcb_connection_t *x = XConnection::get();
    const xcb_window_t root = XConnection::screen()->root;
    const XcbReply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(x, xcb_get_geometry(x, root), nullptr));
    if (size) {
        xcb_configure_notify_event_t notify = {};
        notify.response_type = XCB_CONFIGURE_NOTIFY;
        notify.event = root;
        notify.window = root;
        notify.width = size->width;
        notify.height = size->height;
        m_window->sendHere(notify);
        xcb_flush(x);
        RootProperties::catchUpAnew();
    }
}

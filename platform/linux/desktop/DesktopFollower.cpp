#include "platform/linux/desktop/DesktopFollower.h"

#include "platform/LogCategories.h"
#include "platform/linux/desktop/DarkPalette.h"
#include "platform/linux/desktop/FontDescription.h"
#include "platform/linux/desktop/StartScale.h"
#include "platform/text/SystemFont.h"

#include <QApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace
{

/// A menu that is open when its font changes grows to the right and downwards, wherever it is.
void keepMenusOnScreen()
{
    for (QWidget *const window : QApplication::topLevelWidgets()) {
        if (window->isVisible() && window->windowType() == Qt::Popup) {
            const QRect room = window->screen()->geometry();
            const QPoint last = room.bottomRight() - window->rect().bottomRight();
            window->move(std::max(room.left(), std::min(window->x(), last.x())),
                         std::max(room.top(), std::min(window->y(), last.y())));
        }
    }
}

} // namespace

void DesktopLook::prepareScale()
{
    int screen = 0;
    xcb_connection_t *const x = xcb_connect(nullptr, &screen);
    if (xcb_connection_has_error(x) == 0) {
        StartScale::announce(x, screen);
    }
    xcb_disconnect(x);
}

void DesktopLook::follow(Part part)
{
    new DesktopFollower(part, SessionBus::instance(), QCoreApplication::instance());
}

DesktopFollower::DesktopFollower(DesktopLook::Part part, SessionBus &bus, QObject *parent)
    : QObject(parent)
    , m_part(part)
    , m_ownFont(QApplication::font())
    , m_portal(bus)
{
    connect(&m_settings, &XSettingsWatch::changed, this, &DesktopFollower::update);
    connect(&m_portal, &ColourSchemePortal::changed, this, &DesktopFollower::update);
    update();
    if (m_part == DesktopLook::Part::ColoursAndFonts && m_fontName.isEmpty()) {
        setApplicationFont(m_ownFont);
    }
}

void DesktopFollower::update()
{
    const XSettings settings = XSettingsWatch::settings();
    updateColours(settings);
    if (m_part == DesktopLook::Part::ColoursAndFonts) {
        updateFont(settings.text("Gtk/FontName"));
    }
}

void DesktopFollower::updateColours(const XSettings &settings)
{
    const bool isDark = isDesktopDark(m_portal.scheme(), settings);
    if (std::exchange(m_isDark, isDark) == isDark) {
        return;
    }
    const char *const look = isDark ? "dark" : "light";
    if (m_portal.scheme() != ColourScheme::NoPreference) {
        qCDebug(agentLog, "the desktop is %s, says its portal", look);
    } else {
        qCDebug(agentLog).nospace() << "the desktop is " << look << ", by its theme "
                                    << QString::fromUtf8(settings.text("Net/ThemeName"));
    }
    QApplication::setPalette(isDark ? darkPalette() : QPalette());
}

void DesktopFollower::updateFont(const QByteArray &name)
{
    if (std::exchange(m_fontName, name) == name) {
        return;
    }
    qCDebug(agentLog) << "the desktop's font is" << QString::fromUtf8(name);
    setApplicationFont(name.isEmpty() ? m_ownFont
                                      : describedFont(readFontDescription(QString::fromUtf8(name)), m_ownFont));
    // Behind Qt, which tells the windows from the event loop.
    QMetaObject::invokeMethod(this, &keepMenusOnScreen, Qt::QueuedConnection);
}

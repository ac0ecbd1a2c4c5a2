#include "platform/linux/item/form/PresentItem.h"

#include "platform/LogCategories.h"
#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/item/NotifierRegistration.h"
#include "platform/linux/item/StatusNotifierItem.h"
#include "platform/linux/item/TrayIconWindow.h"
#include "platform/linux/item/TrayProtocol.h"
#include "platform/linux/item/form/ItemSide.h"
#include "platform/linux/item/strip/Strip.h"

#include <chrono>
#include <utility>

PresentItem::PresentItem()
{
    using namespace std::chrono_literals;
    m_dockTimeout.setSingleShot(true);
    m_dockTimeout.setInterval(5s);
    connect(&m_dockTimeout, &QTimer::timeout, this, &PresentItem::standIn);
    connect(&m_screens, &ScreenChanges::changed, this, &PresentItem::followScreens);
}

PresentItem::~PresentItem() = default;

void PresentItem::end()
{
    m_dockTimeout.stop();
    m_isAlone = false;
    m_standsIn = false;
    m_strip.reset();
    m_docked.reset();
    m_registration.reset();
    m_notifierItem.reset();
}

void PresentItem::dockIn(xcb_window_t tray)
{
    m_askedSide = itemSide(screenCoordinates().ratio);
    m_docked = TrayIconWindow::dockedIn(tray, m_askedSide);
    m_dockTimeout.start();
    if (m_docked) {
        listenTo(*m_docked);
        connect(m_docked.get(), &TrayIconWindow::lost, this, &PresentItem::lost);
        connect(m_docked.get(), &TrayIconWindow::docked, this, [this] {
            m_dockTimeout.stop();
            m_standsIn = false;
            m_strip.reset();
        });
    }
}

void PresentItem::registerWith(const QDBusConnection &connection, const QString &watcher, QMenu *menu)
{
    m_notifierItem = std::make_unique<StatusNotifierItem>(menu);
    m_notifierItem->setLook(m_look);
    connect(m_notifierItem.get(), &StatusNotifierItem::pressed, this, &PresentItem::pressed);
    m_registration = std::make_unique<NotifierRegistration>(connection, watcher, *m_notifierItem);
}

void PresentItem::standAlone()
{
    m_isAlone = true;
    makeStrip();
}

/// The tray that was asked may never answer. The item waits for it by itself, where the user has it meanwhile.
void PresentItem::standIn()
{
    qCDebug(itemLog, "the tray does not take the item in: it waits at the top of the screen");
    m_standsIn = true;
    makeStrip();
}

void PresentItem::makeStrip()
{
    m_strip.reset(); // The old one takes back, as it goes, where it said that it stands.
    m_strip = Strip::make();
    if (m_strip) {
        listenTo(m_strip->window());
        connect(m_strip.get(), &Strip::moved, this, &PresentItem::moved);
        if (m_isAlone) {
            connect(&m_strip->window(), &TrayIconWindow::lost, this, &PresentItem::lost);
        } else {
            connect(&m_strip->window(), &TrayIconWindow::lost, &m_dockTimeout, qOverload<>(&QTimer::start));
        }
    }
    Q_EMIT remade();
}

void PresentItem::listenTo(TrayIconWindow &window)
{
    connect(&window, &TrayIconWindow::pressed, this, &PresentItem::pressed);
    connect(&window, &TrayIconWindow::chosenByKey, this, &PresentItem::chosenByKey);
    connect(&window, &TrayIconWindow::focusChanged, this, &PresentItem::focusChanged);
    window.setLook(m_look);
}

void PresentItem::followScreens()
{
    if (m_docked) { // The desktop may have another scale by now.
        const int side = itemSide(screenCoordinates().ratio);
        if (std::exchange(m_askedSide, side) != side) {
            TrayProtocol::askForSize(m_docked->id(), {side, side});
        }
    }
    // Where there was no screen to stand on, there may be one now.
    if ((m_isAlone || m_standsIn) && !m_strip) {
        makeStrip();
    }
}

void PresentItem::setLook(const StatusItemLook &look)
{
    m_look = look;
    for (TrayIconWindow *const each : {m_docked.get(), m_strip ? &m_strip->window() : nullptr}) {
        if (each) {
            each->setLook(look);
        }
    }
    if (m_notifierItem) {
        m_notifierItem->setLook(look);
    }
}

TrayIconWindow *PresentItem::window() const
{
    return m_strip ? &m_strip->window() : m_docked.get();
}

#include "platform/StatusItem.h"

#include "platform/LogCategories.h"
#include "platform/linux/accessibility/AccessibleItem.h"
#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/include/SessionBus.h"
#include "platform/linux/include/XConnection.h"
#include "platform/linux/item/NotifierHostWatch.h"
#include "platform/linux/item/NotifierRegistration.h"
#include "platform/linux/item/StatusItemForm.h"
#include "platform/linux/item/StatusNotifierItem.h"
#include "platform/linux/item/TrayHostWatch.h"
#include "platform/linux/item/TrayIconWindow.h"
#include "platform/linux/item/TrayProtocol.h"
#include "platform/linux/item/menu/MenuRequests.h"
#include "platform/linux/item/menu/PressedPlace.h"
#include "platform/linux/item/strip/Strip.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QScreen>
#include <QTimer>

#include <chrono>
#include <cmath>
#include <utility>

namespace
{
int deviceSide(const ScreenCoordinates &screen)
{
    return static_cast<int>(std::lround(22 * screen.ratio)); // 22 points.
}
} // namespace

class StatusItem::Private final : public QObject
{
public:
    explicit Private(StatusItem *owner);

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == qGuiApp && event->type() == QEvent::ApplicationPaletteChange) {
            apply();
        }
        return false;
    }
    void update(Settling settling);
    void apply();
    void setMenu(QMenu *offered);
    void showMenu() { m_requests->showMenu(); }

    /// The window that the user sees, or shall see; null when there is none.
    [[nodiscard]] TrayIconWindow *window() const { return m_strip ? &m_strip->window() : m_docked.get(); }

    StatusItemLook look;

private:
    void setForm(StatusItemForm form);
    void dock();
    void standAlone();
    void listenTo(TrayIconWindow &window);
    void handleLoss();
    void standIn();
    void makeStripAgain();
    void askForSize();
    void handlePress(std::optional<QPoint> place);
    void handleKey();
    void tellOfFocus(bool focused) { AccessibleItem::tellOfFocus(*m_owner, focused); }

    StatusItem *const m_owner;
    QMenu *m_menu = nullptr;
    const std::shared_ptr<MenuRequests> m_requests = MenuRequests::shared();
    TrayHostWatch m_trays;
    NotifierHostWatch m_notifiers;
    bool m_isNew = true; ///< Until all has been asked for the first time.
    StatusItemForm m_form = StatusItemForm::None;
    std::unique_ptr<TrayIconWindow> m_docked; ///< In the form Tray.
    std::unique_ptr<Strip> m_strip;           ///< In the form Strip, and in the form Tray while the tray does nothing.
    bool m_standsIn = false;                  ///< The tray does nothing, be there a strip or no screen for one.
    xcb_window_t m_tray = XCB_NONE;           ///< The one that `m_docked` was made for.
    QString m_watcher; ///< The one that `m_notifierItem` is registered with, in the form Notifier.
    std::unique_ptr<StatusNotifierItem> m_notifierItem;
    std::unique_ptr<NotifierRegistration> m_registration;
    std::optional<PressedPlace> m_lastPress; ///< With that registration.
    QTimer m_settling;
    QTimer m_dockTimeout;
};

StatusItem::Private::Private(StatusItem *owner)
    : m_owner(owner)
    , m_notifiers(SessionBus::instance())
{
    using namespace std::chrono_literals;
    m_settling.setSingleShot(true);
    m_settling.setInterval(1s);
    connect(&m_settling, &QTimer::timeout, this, [this] { update(Settling::Over); });
    m_dockTimeout.setSingleShot(true);
    m_dockTimeout.setInterval(5s);
    connect(&m_dockTimeout, &QTimer::timeout, this, &Private::standIn);
    connect(m_requests.get(), &MenuRequests::requested, this, &Private::handleKey);
    connect(&m_trays, &TrayHostWatch::changed, this, [this] { update(Settling::Underway); });
    connect(&m_notifiers, &NotifierHostWatch::changed, this,
            [this] { update(std::exchange(m_isNew, false) ? Settling::Over : Settling::Underway); });

    qGuiApp->installEventFilter(this);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, &Private::makeStripAgain);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &Private::makeStripAgain);
    if (const QScreen *const screen = QGuiApplication::primaryScreen()) {
        connect(screen, &QScreen::geometryChanged, this, &Private::askForSize);
        connect(screen, &QScreen::logicalDotsPerInchChanged, this, &Private::askForSize);
    }
    m_isNew = m_notifiers.isAsking();
    update(m_isNew ? Settling::Underway : Settling::Over);
}

void StatusItem::Private::update(Settling settling)
{
    const StatusItemHosts hosts{m_trays.tray() != XCB_NONE, m_notifiers.hosts(), m_trays.isProxy()};
    const StatusItemForm form = pickForm(hosts, m_form, settling);
    if (form == wantedForm(hosts)) {
        m_settling.stop();
    } else if (!m_settling.isActive()) {
        qCDebug(itemLog, "the item is %s for now: the hosts may still change", description(form));
        m_settling.start();
    }
    if (form != m_form || (form == StatusItemForm::Tray && m_tray != m_trays.tray()) ||
        (form == StatusItemForm::Notifier && m_watcher != m_notifiers.watcher())) {
        qCDebug(itemLog, "the item is %s: there is %s", description(form), description(hosts).constData());
        setForm(form);
    }
}

void StatusItem::Private::setForm(StatusItemForm form)
{
    const bool isForHost = form == StatusItemForm::Notifier;
    const QDBusConnection forItem = isForHost ? SessionBus::instance().connectOnceMore() : QDBusConnection(QString());
    if (isForHost && !forItem.isConnected()) {
        qCDebug(itemLog, "the session bus takes no connection for the item: it is tried again");
        m_notifiers.askAgainLater();
        update(Settling::Over);
        return;
    }
    tellOfFocus(false);
    // The old form goes first: the item is never seen twice.
    m_dockTimeout.stop();
    m_standsIn = false;
    m_strip.reset();
    m_docked.reset();
    m_registration.reset();
    m_notifierItem.reset();
    m_lastPress.reset();
    m_form = form;
    m_tray = XCB_NONE;
    m_watcher.clear();
    switch (form) {
    case StatusItemForm::None:
        break;
    case StatusItemForm::Tray:
        m_tray = m_trays.tray();
        dock();
        break;
    case StatusItemForm::Notifier:
        m_watcher = m_notifiers.watcher();
        m_notifierItem = std::make_unique<StatusNotifierItem>(m_menu);
        connect(m_notifierItem.get(), &StatusNotifierItem::pressed, this, [this](std::optional<QPoint> place) {
            m_lastPress = place ? std::optional(PressedPlace{*place, presentScreens()}) : m_lastPress;
            handlePress(place);
        });
        m_registration = std::make_unique<NotifierRegistration>(forItem, m_watcher, *m_notifierItem);
        break;
    case StatusItemForm::Strip:
        standAlone();
        break;
    }
    apply();
}

void StatusItem::Private::dock()
{
    m_docked = TrayIconWindow::dockedIn(m_tray, deviceSide(screenCoordinates()));
    m_dockTimeout.start();
    if (m_docked) {
        listenTo(*m_docked);
        connect(m_docked.get(), &TrayIconWindow::lost, this, &Private::handleLoss);
        connect(m_docked.get(), &TrayIconWindow::docked, this, [this] {
            m_dockTimeout.stop();
            m_standsIn = false;
            m_strip.reset();
        });
    }
}

void StatusItem::Private::standAlone()
{
    m_strip.reset(); // The old one takes back, as it goes, where it said that it stands.
    m_strip = Strip::make();
    if (m_strip) {
        listenTo(m_strip->window());
        connect(m_strip.get(), &Strip::moved, m_owner, &StatusItem::moved);
        if (m_form == StatusItemForm::Tray) {
            connect(&m_strip->window(), &TrayIconWindow::lost, &m_dockTimeout, qOverload<>(&QTimer::start));
        } else {
            connect(&m_strip->window(), &TrayIconWindow::lost, this, &Private::handleLoss);
        }
    }
}

void StatusItem::Private::listenTo(TrayIconWindow &window)
{
    connect(&window, &TrayIconWindow::pressed, this, &Private::handlePress);
    connect(&window, &TrayIconWindow::chosenByKey, this, &Private::handleKey);
    connect(&window, &TrayIconWindow::focusChanged, this, &Private::tellOfFocus);
}

/// The tray has gone, or has put the icon out while it rebuilds itself, or another program has destroyed the window. In
/// each case the item is placed anew after settling.
void StatusItem::Private::handleLoss()
{
    qCDebug(itemLog, m_form == StatusItemForm::Tray ? "the tray has put the item out: it is asked again"
                                                    : "the item's window has been destroyed: there will be another");
    setForm(StatusItemForm::None);
    m_settling.start();
}

/// The tray that was asked may never answer. The item waits for it by itself, where the user has it meanwhile.
void StatusItem::Private::standIn()
{
    qCDebug(itemLog, "the tray does not take the item in: it waits at the top of the screen");
    m_standsIn = true;
    standAlone();
    apply();
}

/// Where there was no screen to stand on, there may be one now.
void StatusItem::Private::makeStripAgain()
{
    if (m_form == StatusItemForm::Strip && !m_strip) {
        setForm(StatusItemForm::Strip);
    } else if (m_standsIn && !m_strip) {
        standIn();
    }
}

void StatusItem::Private::askForSize()
{
    if (m_docked) { // The desktop may have another scale by now.
        const int side = deviceSide(screenCoordinates());
        TrayProtocol::askForSize(m_docked->id(), {side, side});
    }
}

void StatusItem::Private::apply()
{
    look.plate = QGuiApplication::palette().color(QPalette::Window).rgb();
    for (TrayIconWindow *const each : {m_docked.get(), m_strip ? &m_strip->window() : nullptr}) {
        if (each) {
            each->setLook(look);
        }
    }
    if (m_notifierItem) {
        m_notifierItem->setLook(look);
    }
    AccessibleItem::tellOfChange(*m_owner);
}

void StatusItem::Private::setMenu(QMenu *offered)
{
    if (m_menu != offered) {
        m_menu = offered;
        if (m_form == StatusItemForm::Notifier) {
            setForm(m_form); // Hosts ask once whether an item has a menu.
        }
    }
}

void StatusItem::Private::handlePress(std::optional<QPoint> place)
{
    qCDebug(itemLog, look.enabled ? "pressed" : "pressed, while a panel has to be answered first");
    if (look.enabled) {
        Q_EMIT m_owner->pressed(place ? std::optional(screenCoordinates().fromDevice(*place)) : std::nullopt);
    }
}

/// As if the item had been pressed: where it is, or is held to be.
void StatusItem::Private::handleKey()
{
    const auto place = window() ? window()->place() : std::nullopt;
    handlePress(place ? place->topLeft() : placeUnseen(m_lastPress));
}

StatusItem::StatusItem(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(this))
{
    AccessibleItem::makeFor(*this, [this] { d->showMenu(); });
}

StatusItem::~StatusItem()
{
    AccessibleItem::tellOfEnd(*this);
}

void StatusItem::setEnabled(bool enabled)
{
    if (d->look.enabled != enabled) {
        d->look.enabled = enabled;
        d->apply();
    }
}

bool StatusItem::isEnabled() const
{
    return d->look.enabled;
}

void StatusItem::setToolTip(const QString &text)
{
    if (d->look.toolTip != text) {
        d->look.toolTip = text;
        d->apply();
    }
}

QString StatusItem::toolTip() const
{
    return d->look.toolTip;
}

void StatusItem::setTitle(const QString &title)
{
    if (d->look.title != title) {
        d->look.title = title;
        d->apply();
    }
}

QString StatusItem::title() const
{
    return d->look.title;
}

void StatusItem::setStateText(const QString &text)
{
    if (d->look.stateText != text) {
        d->look.stateText = text;
        d->apply();
    }
}

QString StatusItem::stateText() const
{
    return d->look.stateText;
}

void StatusItem::setImage(const QIcon &image)
{
    if (d->look.image.cacheKey() != image.cacheKey()) {
        d->look.image = image;
        d->apply();
    }
}

QIcon StatusItem::image() const
{
    return d->look.image;
}

void StatusItem::setMenu(QMenu *menu)
{
    d->setMenu(menu);
}

WId StatusItem::getWindow() const
{
    return d->window() && d->window()->place() ? d->window()->id() : 0;
}

QScreen *StatusItem::getScreen() const
{
    const std::optional<QRect> place = d->window() ? d->window()->place() : std::nullopt;
    if (!place) {
        return nullptr;
    }
    const ScreenCoordinates screen = screenCoordinates();
    return QGuiApplication::screenAt(screen.toQt(screen.fromDevice(place->center())));
}

std::optional<NSRect> StatusItem::frame() const
{
    const std::optional<QRect> place = d->window() ? d->window()->place() : std::nullopt;
    if (!place) {
        return std::nullopt;
    }
    return screenCoordinates().fromDevice(*place);
}

#include "platform/StatusItem.h"

#include "platform/LogCategories.h"
#include "platform/linux/accessibility/AccessibleItem.h"
#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/include/SessionBus.h"
#include "platform/linux/include/XConnection.h"
#include "platform/linux/item/NotifierHostWatch.h"
#include "platform/linux/item/StatusItemForm.h"
#include "platform/linux/item/TrayHostWatch.h"
#include "platform/linux/item/TrayIconWindow.h"
#include "platform/linux/item/form/PresentItem.h"
#include "platform/linux/item/menu/MenuRequests.h"
#include "platform/linux/item/menu/PressedPlace.h"

#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QTimer>

#include <chrono>
#include <utility>

class StatusItem::Private final : public QObject
{
public:
    explicit Private(StatusItem *owner);
    ~Private() override { m_requests->setMenuQuestion(nullptr); }

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

    [[nodiscard]] std::optional<QRect> place() const { return window() ? window()->place() : std::nullopt; }
    [[nodiscard]] TrayIconWindow *window() const { return m_item.window(); }

    StatusItemLook look;

private:
    void setForm(StatusItemForm form);
    void handleLoss();
    void handlePress(std::optional<QPoint> told);
    void handleKey();
    void press(std::optional<QPoint> place);
    void tellOfFocus(bool focused) { AccessibleItem::tellOfFocus(*m_owner, focused); }

    StatusItem *const m_owner;
    QMenu *m_menu = nullptr;
    const std::shared_ptr<MenuRequests> m_requests = MenuRequests::shared();
    TrayHostWatch m_trays;
    NotifierHostWatch m_notifiers;
    bool m_isNew = true; ///< Until all has been asked for the first time.
    StatusItemForm m_form = StatusItemForm::None;
    xcb_window_t m_tray = XCB_NONE;          ///< The one that asks for the item, in the form Tray.
    QString m_watcher;                       ///< The one that the item is registered with, in the form Notifier.
    std::optional<PressedPlace> m_lastPress; ///< With that registration.
    PresentItem m_item;
    QTimer m_settling;
};

StatusItem::Private::Private(StatusItem *owner)
    : m_owner(owner)
    , m_notifiers(SessionBus::instance())
{
    using namespace std::chrono_literals;
    m_settling.setSingleShot(true);
    m_settling.setInterval(1s);
    connect(&m_settling, &QTimer::timeout, this, [this] { update(Settling::Over); });
    connect(m_requests.get(), &MenuRequests::requested, this, &Private::handleKey);
    m_requests->setMenuQuestion([this] { return look.enabled; });
    connect(&m_trays, &TrayHostWatch::changed, this, [this] { update(Settling::Underway); });
    connect(&m_notifiers, &NotifierHostWatch::changed, this,
            [this] { update(std::exchange(m_isNew, false) ? Settling::Over : Settling::Underway); });

    connect(&m_item, &PresentItem::pressed, this, &Private::handlePress);
    connect(&m_item, &PresentItem::chosenByKey, this, &Private::handleKey);
    connect(&m_item, &PresentItem::focusChanged, this, &Private::tellOfFocus);
    connect(&m_item, &PresentItem::lost, this, &Private::handleLoss);
    connect(&m_item, &PresentItem::moved, m_owner, &StatusItem::moved);
    connect(&m_item, &PresentItem::remade, this, &Private::apply);
    qGuiApp->installEventFilter(this);

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
    m_item.end();
    m_lastPress.reset();
    m_form = form;
    m_tray = XCB_NONE;
    m_watcher.clear();
    switch (form) {
    case StatusItemForm::None:
        break;
    case StatusItemForm::Tray:
        m_tray = m_trays.tray();
        m_item.dockIn(m_tray);
        break;
    case StatusItemForm::Notifier:
        m_watcher = m_notifiers.watcher();
        m_item.registerWith(forItem, m_watcher, m_menu);
        break;
    case StatusItemForm::Strip:
        m_item.standAlone();
        break;
    }
    apply();
}

/// The item is placed anew after settling, whatever has become of it.
void StatusItem::Private::handleLoss()
{
    qCDebug(itemLog, m_form == StatusItemForm::Tray ? "the tray has put the item out: it is asked again"
                                                    : "the item's window has been destroyed: there will be another");
    setForm(StatusItemForm::None);
    m_settling.start();
}

void StatusItem::Private::apply()
{
    look.plate = QGuiApplication::palette().color(QPalette::Window).rgb();
    m_item.setLook(look);
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

void StatusItem::Private::handlePress(std::optional<QPoint> told)
{
    if (told && m_form == StatusItemForm::Notifier) {
        m_lastPress = PressedPlace{placeAsTold(*told, m_watcher), presentScreens()};
        press(m_lastPress->place);
    } else {
        press(told);
    }
}

void StatusItem::Private::press(std::optional<QPoint> place)
{
    qCDebug(itemLog, look.enabled ? "pressed" : "pressed, while a panel has to be answered first");
    if (look.enabled) {
        Q_EMIT m_owner->pressed(place ? std::optional(screenCoordinates().fromDevice(*place)) : std::nullopt);
    }
}

/// As if the item had been pressed: where it is, or is held to be.
void StatusItem::Private::handleKey()
{
    const auto present = place();
    press(present ? present->topLeft() : placeUnseen(m_lastPress));
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
    return d->place() ? d->window()->id() : 0;
}

QScreen *StatusItem::getScreen() const
{
    const std::optional<QRect> place = d->place();
    if (!place) {
        return nullptr;
    }
    const ScreenCoordinates screen = screenCoordinates();
    return QGuiApplication::screenAt(screen.toQt(screen.fromDevice(place->center())));
}

std::optional<NSRect> StatusItem::frame() const
{
    const std::optional<QRect> place = d->place();
    if (!place) {
        return std::nullopt;
    }
    return screenCoordinates().fromDevice(*place);
}

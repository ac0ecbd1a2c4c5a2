#include "platform/StatusItem.h"

#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/include/XConnection.h"
#include "platform/linux/item/StatusItemForm.h"
#include "platform/linux/item/SystemTrayStandIn.h"
#include "platform/linux/item/TrayHostWatch.h"
#include "platform/linux/item/TrayIconWindow.h"

#include <QGuiApplication>
#include <QScreen>
#include <QTimer>

#include <chrono>
#include <cmath>

namespace
{

constexpr double sideInPoints = 22;

int deviceSide(const ScreenCoordinates &screen)
{
    return static_cast<int>(std::lround(sideInPoints * screen.ratio));
}

/// The top-right corner of the main screen.
QRect stripPlace(const ScreenCoordinates &screen)
{
    const int side = deviceSide(screen);
    return {screen.mainScreen.x() + screen.mainScreen.width() - side, screen.mainScreen.y(), side, side};
}

} // namespace

class StatusItem::Private final : public QObject
{
public:
    explicit Private(StatusItem *owner);

    void update(Settling settling);
    void apply();

    StatusItemLook look;
    std::unique_ptr<TrayIconWindow> window; ///< In the forms Tray and Strip.

private:
    void take(StatusItemForm form);
    void setWindow(std::unique_ptr<TrayIconWindow> made);
    void handleUndocked();
    void watchScreen(QScreen *screen);
    void placeStrip();
    void handlePress();

    StatusItem *const m_owner;
    TrayHostWatch m_hosts;
    StatusItemForm m_form = StatusItemForm::None;
    xcb_window_t m_tray = XCB_NONE; ///< The one that `window` was made for, in the form Tray.
    std::unique_ptr<SystemTrayStandIn> m_standIn;
    QTimer m_settling;
};

StatusItem::Private::Private(StatusItem *owner)
    : m_owner(owner)
{
    using namespace std::chrono_literals;
    m_settling.setSingleShot(true);
    m_settling.setInterval(1s);
    connect(&m_settling, &QTimer::timeout, this, [this] { update(Settling::Over); });
    connect(&m_hosts, &TrayHostWatch::changed, this, [this] { update(Settling::Underway); });

    connect(qGuiApp, &QGuiApplication::screenAdded, this, &Private::watchScreen);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &Private::placeStrip);
    const QList<QScreen *> screens = QGuiApplication::screens();
    for (QScreen *screen : screens) {
        watchScreen(screen);
    }
    update(Settling::Over);
}

void StatusItem::Private::update(Settling settling)
{
    const StatusItemHosts hosts{m_hosts.tray() != XCB_NONE, m_hosts.hasNotifierHost()};
    const StatusItemForm form = pickForm(hosts, m_form, settling);
    if (form == wantedForm(hosts)) {
        m_settling.stop();
    } else if (!m_settling.isActive()) {
        m_settling.start();
    }
    if (form != m_form || (form == StatusItemForm::Tray && m_tray != m_hosts.tray())) {
        take(form);
    }
}

void StatusItem::Private::take(StatusItemForm form)
{
    // The old form goes first: the item is never seen twice.
    window.reset();
    m_standIn.reset();
    m_form = form;
    m_tray = XCB_NONE;
    switch (form) {
    case StatusItemForm::None:
        break;
    case StatusItemForm::Tray:
        m_tray = m_hosts.tray();
        setWindow(TrayIconWindow::dockedIn(m_tray, deviceSide(screenCoordinates())));
        break;
    case StatusItemForm::Notifier:
        m_standIn = std::make_unique<SystemTrayStandIn>();
        connect(m_standIn.get(), &SystemTrayStandIn::pressed, this, &Private::handlePress);
        break;
    case StatusItemForm::Strip:
        if (const ScreenCoordinates screen = screenCoordinates(); !screen.mainScreen.isEmpty()) {
            setWindow(TrayIconWindow::standingAt(stripPlace(screen)));
        }
        break;
    }
    apply();
}

void StatusItem::Private::setWindow(std::unique_ptr<TrayIconWindow> made)
{
    window = std::move(made);
    if (window) {
        connect(window.get(), &TrayIconWindow::pressed, this, &Private::handlePress);
        connect(window.get(), &TrayIconWindow::undocked, this, &Private::handleUndocked);
    }
}

/// The tray has gone, or it has put the icon out while it rebuilds itself; either way it is asked again after settling.
void StatusItem::Private::handleUndocked()
{
    take(StatusItemForm::None);
    m_settling.start();
}

void StatusItem::Private::watchScreen(QScreen *screen)
{
    connect(screen, &QScreen::geometryChanged, this, &Private::placeStrip);
}

void StatusItem::Private::placeStrip()
{
    if (m_form != StatusItemForm::Strip) {
        return;
    }
    const ScreenCoordinates screen = screenCoordinates();
    if (window && !screen.mainScreen.isEmpty()) {
        window->moveTo(stripPlace(screen));
    } else {
        take(StatusItemForm::Strip);
    }
}

void StatusItem::Private::apply()
{
    if (window) {
        window->setLook(look);
    }
    if (m_standIn) {
        m_standIn->setLook(look);
    }
}

void StatusItem::Private::handlePress()
{
    if (look.enabled) {
        Q_EMIT m_owner->pressed();
    }
}

StatusItem::StatusItem(QObject *parent)
    : QObject(parent)
    , d(std::make_unique<Private>(this))
{
}

StatusItem::~StatusItem() = default;

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

std::optional<NSRect> StatusItem::frame() const
{
    const std::optional<QRect> place = d->window ? d->window->place() : std::nullopt;
    if (!place) {
        return std::nullopt;
    }
    return screenCoordinates().fromDevice(*place);
}

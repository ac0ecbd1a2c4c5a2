#include "platform/linux/item/strip/Strip.h"

#include "platform/LogCategories.h"
#include "platform/ProductTexts.h"
#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/include/XConnection.h"
#include "platform/linux/item/form/ItemSide.h"
#include "platform/linux/item/strip/StripPlacement.h"
#include "platform/linux/screen/windows/StackingRule.h"
#include "platform/linux/screen/windows/StandingItem.h"
#include "platform/linux/screen/windows/WorkArea.h"
#include "platform/linux/workarounds/RootProperties.h"

#include <QApplication>

#include <array>
#include <utility>

namespace
{

/// Where the user has put it before, whichever copy of this program it was.
std::optional<int> rememberedDistance(double ratio)
{
    xcb_connection_t *x = XConnection::get();
    const auto cookie = xcb_get_property(x, false, XConnection::screen()->root,
                                         XConnection::atom(ProductTexts::itemPlaceProperty), XCB_ATOM_CARDINAL, 0, 2);
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x, cookie, nullptr));
    if (!reply || reply->format != 32 || reply->value_len != 2 || reply->bytes_after != 0) {
        return std::nullopt;
    }
    const auto *const numbers = static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get()));
    return keptStripDistance(numbers[0], numbers[1], ratio);
}

void rememberDistance(int distance, double ratio)
{
    const std::array<std::uint32_t, 2> numbers = {static_cast<std::uint32_t>(distance), keptRatio(ratio)};
    xcb_connection_t *x = XConnection::get();
    xcb_change_property(x, XCB_PROP_MODE_REPLACE, XConnection::screen()->root,
                        XConnection::atom(ProductTexts::itemPlaceProperty), XCB_ATOM_CARDINAL, 32, numbers.size(),
                        numbers.data());
    xcb_flush(x);
}

QRect workArea(const ScreenCoordinates &screen)
{
    return workAreaOn(screen.mainScreen, WorkAreaQuestion().answer(screen.mainScreen));
}

/// Empty when there is no main screen.
QRect presentPlace()
{
    const ScreenCoordinates screen = screenCoordinates();
    if (screen.mainScreen.isEmpty()) {
        return {};
    }
    return stripPlace(workArea(screen), itemSide(screen.ratio),
                      rememberedDistance(screen.ratio).value_or(usualStripDistance(screen.ratio)));
}

} // namespace

std::unique_ptr<Strip> Strip::make()
{
    const QRect place = presentPlace();
    if (place.isEmpty()) {
        qCDebug(itemLog, "no item: there is no screen to stand on");
        return nullptr;
    }
    std::unique_ptr<TrayIconWindow> window = TrayIconWindow::standingAt(place);
    if (!window) {
        return nullptr;
    }
    std::unique_ptr<Strip> strip(new Strip(std::move(window)));
    strip->m_place = place;
    strip->m_settled = place;
    StandingItem::set(place);
    strip->follow(); // The work area may have changed before it was heard.
    return strip;
}

Strip::Strip(std::unique_ptr<TrayIconWindow> window)
    : m_window(std::move(window))
    , m_manager(WindowsOfOthers::managersSelection(), [this](xcb_window_t) {
        // Not from inside Qt's event filters, of which one is added or removed.
        QMetaObject::invokeMethod(this, &Strip::stayAboveWhatNobodyManages, Qt::QueuedConnection);
    })
{
    QCoreApplication::instance()->installNativeEventFilter(this);
    RootProperties::hear(this);
    connect(&m_screens, &ScreenChanges::changed, this, &Strip::follow);
    stayAboveWhatNobodyManages();
}

Strip::~Strip()
{
    StandingItem::set({});
}

void Strip::follow()
{
    const QRect place = presentPlace();
    if (!place.isEmpty() && place != m_settled) {
        qCDebug(itemLog, "the screen has changed: the item goes to (%d, %d)", place.x(), place.y());
        m_press.reset();
        m_settled = place;
        stand(place);
    }
}

void Strip::stayAboveWhatNobodyManages()
{
    if (WindowsOfOthers::areManaged()) {
        m_others.reset();
    } else if (!m_others) {
        m_others = std::make_unique<WindowsOfOthers>(*this, [this] { return m_window->id(); });
        riseAboveWindowsOfOthers(m_window->id()); // Of those that the manager has left there.
    }
}

void Strip::stand(const QRect &place)
{
    m_place = place;
    m_window->moveTo(place);
    StandingItem::set(place);
}

bool Strip::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    switch (XConnection::eventType(*event)) {
    case XCB_PROPERTY_NOTIFY: {
        const auto *notify = reinterpret_cast<const xcb_property_notify_event_t *>(event);
        if (notify->window == XConnection::screen()->root &&
            (notify->atom == XConnection::atom("_NET_WORKAREA") ||
             notify->atom == XConnection::atom("_GTK_WORKAREAS_D0") || // All desktops' change together.
             notify->atom == XConnection::atom("_NET_CURRENT_DESKTOP"))) {
            QMetaObject::invokeMethod(this, &Strip::follow, Qt::QueuedConnection);
        }
        break;
    }
    case XCB_BUTTON_PRESS: {
        const auto *press = reinterpret_cast<const xcb_button_press_event_t *>(event);
        if (press->event == m_window->id()) {
            handlePress(*press);
        }
        break;
    }
    case XCB_MOTION_NOTIFY: {
        const auto *motion = reinterpret_cast<const xcb_motion_notify_event_t *>(event);
        if (motion->event == m_window->id() && m_press) {
            handleMotion(*motion);
        }
        break;
    }
    case XCB_BUTTON_RELEASE: {
        const auto *release = reinterpret_cast<const xcb_button_release_event_t *>(event);
        if (release->event == m_window->id() && m_press) {
            handleRelease(*release);
        }
        break;
    }
    default:
        break;
    }
    return false;
}

void Strip::handlePress(const xcb_button_press_event_t &press)
{
    if (m_press && press.detail != XCB_BUTTON_INDEX_1) {
        return; // The wheel, say, in the middle of a drag.
    }
    // What closes a menu does so at once, as everywhere.
    if (press.detail != XCB_BUTTON_INDEX_1 || QApplication::activePopupWidget()) {
        m_press.reset();
        m_window->takePress(press);
        return;
    }
    m_window->hideToolTip();
    m_press = press;
    m_isDragged = false;
}

void Strip::handleMotion(const xcb_motion_notify_event_t &motion)
{
    const QPoint moved(motion.root_x - m_press->root_x, motion.root_y - m_press->root_y);
    if (!m_isDragged) {
        const double pixelsPerPoint = m_place.width() / itemSideInPoints;
        switch (stripPress(moved, qRound(QApplication::startDragDistance() * pixelsPerPoint))) {
        case StripPress::Undecided:
            return;
        case StripPress::Open:
            m_window->takePress(*std::exchange(m_press, std::nullopt));
            return;
        case StripPress::Drag:
            m_isDragged = true;
            m_area = workArea(screenCoordinates());
            m_window->hideToolTip();
            break;
        }
    }
    const int right = m_settled.x() + m_settled.width() + moved.x();
    stand(stripPlace(m_area, m_place.width(), m_area.x() + m_area.width() - right));
}

void Strip::handleRelease(const xcb_button_release_event_t &release)
{
    if (release.detail != XCB_BUTTON_INDEX_1) {
        return;
    }
    const xcb_button_press_event_t press = *std::exchange(m_press, std::nullopt);
    if (!m_isDragged) {
        m_window->takePress(press);
        return;
    }
    const int distance = m_area.x() + m_area.width() - m_place.x() - m_place.width();
    qCDebug(itemLog, "the user has put the item %d pixels from the right", distance);
    m_settled = m_place;
    rememberDistance(distance, screenCoordinates().ratio);
    QMetaObject::invokeMethod(this, &Strip::moved, Qt::QueuedConnection);
}

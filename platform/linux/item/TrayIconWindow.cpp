#include "platform/linux/item/TrayIconWindow.h"

#include "platform/LogCategories.h"
#include "platform/ProductTexts.h"
#include "platform/linux/include/XConnection.h"
#include "platform/linux/item/PressedKey.h"
#include "platform/linux/item/TrayProtocol.h"
#include "platform/linux/item/WindowPicture.h"
#include "platform/linux/item/menu/OpenPopUps.h"
#include "platform/linux/screen/windows/WindowNames.h"
#include "platform/linux/screen/windows/WindowPlace.h"
#include "platform/linux/workarounds/RootProperties.h"

#include <QApplication>
#include <QCursor>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace
{

const QByteArray className(ProductTexts::itemName.data(), ProductTexts::itemName.size());

/// The tray's windows may be gone before a request about them arrives; that is no error worth Qt's log.
void ignoreError(xcb_void_cookie_t cookie)
{
    xcb_discard_reply(XConnection::get(), cookie.sequence);
}

} // namespace

std::unique_ptr<TrayIconWindow> TrayIconWindow::dockedIn(xcb_window_t tray, int side)
{
    const std::optional<XVisual> visual = TrayProtocol::visualOf(tray);
    if (!visual) {
        qCWarning(itemLog, "no item: the tray asks for a visual that cannot be painted");
        return nullptr;
    }
    qCDebug(itemLog, "asks the tray of window 0x%x to take the item in", tray);
    std::unique_ptr<TrayIconWindow> window(new TrayIconWindow(Kind::Docked, *visual, QRect(0, 0, side, side)));
    TrayProtocol::requestDock(tray, window->m_window, {side, side});
    return window;
}

std::unique_ptr<TrayIconWindow> TrayIconWindow::standingAt(const QRect &place)
{
    xcb_screen_t *screen = XConnection::screen();
    const std::optional<XVisual> visual = findVisual(screen, screen->root_visual);
    if (!visual) {
        qCWarning(itemLog, "no item: the screen's visual cannot be painted");
        return nullptr;
    }
    std::unique_ptr<TrayIconWindow> window(new TrayIconWindow(Kind::Alone, *visual, place));
    xcb_map_window(XConnection::get(), window->m_window);
    xcb_flush(XConnection::get());
    return window;
}

TrayIconWindow::TrayIconWindow(Kind kind, const XVisual &visual, const QRect &place)
    : m_kind(kind)
    , m_visual(visual)
    , m_geometry(place)
{
    xcb_connection_t *x = XConnection::get();
    xcb_screen_t *screen = XConnection::screen();
    m_window = xcb_generate_id(x);
    m_colormap = screen->default_colormap;
    if (visual.id != screen->root_visual) {
        m_colormap = xcb_generate_id(x);
        xcb_create_colormap(x, XCB_COLORMAP_ALLOC_NONE, m_colormap, screen->root, visual.id);
    }
    if (visual.isOfCells()) {
        m_cells.emplace(m_colormap);
    }
    // "Parent relative" is allowed only where the depths agree; elsewhere all bits zero, which is transparent.
    const bool parentRelative = visual.depth == screen->root_depth;
    // Override-redirect: when a tray dies, the server puts its icons back on the root window and maps them; no window
    // manager shall make a framed window of ours then.
    // A docked window hears of the keyboard from its embedder. With the panel's window in focus the server would send
    // it every key pressed while the mouse is over it, if it asked for keys.
    const std::uint32_t keyboard = kind == Kind::Alone
                                       ? XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_FOCUS_CHANGE |
                                             XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_BUTTON_1_MOTION
                                       : XCB_EVENT_MASK_NO_EVENT;
    const std::array<std::uint32_t, 5> values = {
        parentRelative ? static_cast<std::uint32_t>(XCB_BACK_PIXMAP_PARENT_RELATIVE) : 0U, 0, true,
        XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_BUTTON_PRESS |
            XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW | keyboard,
        m_colormap};
    xcb_create_window(x, visual.depth, m_window, screen->root, static_cast<std::int16_t>(place.x()),
                      static_cast<std::int16_t>(place.y()), static_cast<std::uint16_t>(place.width()),
                      static_cast<std::uint16_t>(place.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual.id,
                      (parentRelative ? XCB_CW_BACK_PIXMAP : XCB_CW_BACK_PIXEL) | XCB_CW_BORDER_PIXEL |
                          XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                      values.data());

    setWindowClass(m_window, className);
    setNames();
    QCoreApplication::instance()->installNativeEventFilter(this);

    using namespace std::chrono_literals;
    m_toolTipDelay.setSingleShot(true);
    m_toolTipDelay.setInterval(700ms);
    connect(&m_toolTipDelay, &QTimer::timeout, this, &TrayIconWindow::showToolTip);
}

TrayIconWindow::~TrayIconWindow()
{
    QCoreApplication::instance()->removeNativeEventFilter(this);
    hideToolTip();
    xcb_connection_t *x = XConnection::get();
    ignoreError(xcb_destroy_window_checked(x, m_window));
    if (m_colormap != XConnection::screen()->default_colormap) {
        xcb_free_colormap(x, m_colormap);
    }
    xcb_flush(x);
}

void TrayIconWindow::setLook(const StatusItemLook &look)
{
    const bool repaint = look.image.cacheKey() != m_look.image.cacheKey() || look.enabled != m_look.enabled ||
                         look.plate != m_look.plate;
    const bool rename = look.title != m_look.title || look.toolTip != m_look.toolTip;
    m_look = look;
    if (rename) {
        setNames();
    }
    if (repaint) {
        paint();
    }
}

void TrayIconWindow::moveTo(const QRect &place)
{
    const std::array<std::uint32_t, 4> values = {
        static_cast<std::uint32_t>(place.x()), static_cast<std::uint32_t>(place.y()),
        static_cast<std::uint32_t>(place.width()), static_cast<std::uint32_t>(place.height())};
    xcb_configure_window(XConnection::get(), m_window,
                         XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                         values.data());
    xcb_flush(XConnection::get());
}

std::optional<QRect> TrayIconWindow::place() const
{
    const std::optional<WindowPlace> place = placeOnScreen(m_window);
    const bool isKnown = place && place->isTopLevel == (m_kind == Kind::Alone);
    return isKnown ? std::optional(place->rect) : std::nullopt;
}

bool TrayIconWindow::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    // Never kept from Qt, which reads the time of the last user action from them.
    handleEvent(static_cast<const xcb_generic_event_t *>(message));
    return false;
}

void TrayIconWindow::handleEvent(const xcb_generic_event_t *event)
{
    switch (XConnection::eventType(*event)) {
    case XCB_EXPOSE: {
        const auto *expose = reinterpret_cast<const xcb_expose_event_t *>(event);
        if (expose->window == m_window && expose->count == 0) {
            paint();
        }
        break;
    }
    case XCB_CONFIGURE_NOTIFY: {
        const auto *configure = reinterpret_cast<const xcb_configure_notify_event_t *>(event);
        if (configure->window == m_window) {
            // The background that was mixed in is that of the old place.
            m_geometry = QRect(configure->x, configure->y, configure->width, configure->height);
            paint();
        }
        break;
    }
    case XCB_MAP_NOTIFY:
        if (reinterpret_cast<const xcb_map_notify_event_t *>(event)->window == m_window) {
            m_mapped = true;
        }
        break;
    case XCB_UNMAP_NOTIFY:
        if (reinterpret_cast<const xcb_unmap_notify_event_t *>(event)->window == m_window) {
            m_mapped = false;
        }
        break;
    case XCB_REPARENT_NOTIFY: {
        const auto *reparent = reinterpret_cast<const xcb_reparent_notify_event_t *>(event);
        if (reparent->window == m_window) {
            handleReparent(reparent->parent);
        }
        break;
    }
    case XCB_DESTROY_NOTIFY:
        if (reinterpret_cast<const xcb_destroy_notify_event_t *>(event)->window == m_window) {
            m_mapped = false;
            tellOfLoss();
        }
        break;
    case XCB_BUTTON_PRESS: {
        const auto *press = reinterpret_cast<const xcb_button_press_event_t *>(event);
        if (press->event == m_window && m_kind == Kind::Docked) {
            takePress(*press);
        }
        break;
    }
    case XCB_KEY_PRESS: {
        const auto *press = reinterpret_cast<const xcb_key_press_event_t *>(event);
        if (press->event == m_window) {
            handleKey(*press);
        }
        break;
    }
    case XCB_KEY_RELEASE: {
        const auto *release = reinterpret_cast<const xcb_key_release_event_t *>(event);
        if (release->event == m_window && release->time != XCB_CURRENT_TIME) {
            m_releasedKey = KeyMoment{release->detail, release->time};
        }
        break;
    }
    case XCB_CLIENT_MESSAGE: {
        const auto *client = reinterpret_cast<const xcb_client_message_event_t *>(event);
        if (const auto focused = TrayProtocol::focusTold(*client); focused && client->window == m_window) {
            setFocused(*focused);
        }
        break;
    }
    case XCB_FOCUS_IN:
    case XCB_FOCUS_OUT: {
        const auto *focus = reinterpret_cast<const xcb_focus_in_event_t *>(event);
        if (focus->event == m_window && focus->mode == XCB_NOTIFY_MODE_NORMAL &&
            focus->detail != XCB_NOTIFY_DETAIL_POINTER) {
            setFocused(XConnection::eventType(*event) == XCB_FOCUS_IN);
        }
        break;
    }
    case XCB_ENTER_NOTIFY: {
        const auto *enter = reinterpret_cast<const xcb_enter_notify_event_t *>(event);
        if (enter->event == m_window && enter->mode == XCB_NOTIFY_MODE_NORMAL) {
            m_toolTipDelay.start();
        }
        break;
    }
    case XCB_LEAVE_NOTIFY:
        if (reinterpret_cast<const xcb_leave_notify_event_t *>(event)->event == m_window) {
            hideToolTip();
        }
        break;
    default:
        break;
    }
}

void TrayIconWindow::handleReparent(xcb_window_t parent)
{
    if (parent != XConnection::screen()->root) {
        qCDebug(itemLog, "the tray has taken the item in");
        m_embedded = true;
        m_embedder = parent;
        QMetaObject::invokeMethod(this, &TrayIconWindow::docked, Qt::QueuedConnection);
        return;
    }
    // Put back on the root window, mapped, by the server or by a tray that has no more use for it.
    if (m_embedded) {
        ignoreError(xcb_unmap_window_checked(XConnection::get(), m_window));
        xcb_flush(XConnection::get());
        tellOfLoss();
    }
}

void TrayIconWindow::tellOfLoss()
{
    m_embedded = false;
    QMetaObject::invokeMethod(this, &TrayIconWindow::lost, Qt::QueuedConnection);
}

void TrayIconWindow::takePress(const xcb_button_press_event_t &press)
{
    hideToolTip();
    if (press.detail > XCB_BUTTON_INDEX_3) {
        return;
    }
    const xcb_timestamp_t before = std::exchange(m_lastPress, press.time);
    // Presses that a program makes may have no time.
    const bool isDoubleClick = before != XCB_CURRENT_TIME && press.time != XCB_CURRENT_TIME &&
                               press.time - before < static_cast<xcb_timestamp_t>(QApplication::doubleClickInterval());
    // The press has given this window the pointer until the release. Qt takes the pointer for its menus through the
    // input extension, which the server refuses while a core grab stands: the menu would not see the mouse.
    xcb_ungrab_pointer(XConnection::get(), XCB_CURRENT_TIME);
    xcb_flush(XConnection::get());
    const QPoint where(press.root_x, press.root_y);
    RootProperties::catchUpAndShow(this, [this, button = press.detail, where, isDoubleClick] {
        // A menu that holds the pointer is closed by Qt, and the press never comes here. This is for one that was
        // opened by an earlier press in the same event loop iteration, or that could not get hold of the pointer.
        if (QApplication::activePopupWidget() && isDoubleClick) {
            qCDebug(itemLog, "a double click: the menu stays open");
        } else if (QApplication::activePopupWidget()) {
            qCDebug(itemLog, "pressed: closes the menu that is open");
            closePopUps();
        } else if (button != XCB_BUTTON_INDEX_2) {
            // Presses that a program makes may have no place either.
            Q_EMIT pressed(where.isNull() || place() ? std::nullopt : std::optional(where));
        }
    });
}

void TrayIconWindow::handleKey(const xcb_key_press_event_t &press)
{
    const PressedKey key = pressedKey(press);
    if (key == PressedKey::Open) {
        hideToolTip();
        // GNOME's shell tells of a key's release by another press and the release, both of that moment. The menu in
        // which Return has chosen would open again.
        RootProperties::catchUpAndShow(this, [this, pressed = KeyMoment{press.detail, press.time}] {
            if (!QApplication::activePopupWidget() && m_releasedKey != pressed) {
                Q_EMIT chosenByKey();
            }
        });
    } else if (key != PressedKey::Other && m_embedded) {
        TrayProtocol::passFocus(m_embedder, key == PressedKey::Next ? TrayProtocol::FocusTo::Next
                                                                    : TrayProtocol::FocusTo::Previous);
    }
}

void TrayIconWindow::setFocused(bool focused)
{
    if (m_focused != focused) {
        m_focused = focused;
        paint();
        Q_EMIT focusChanged(focused);
    }
}

void TrayIconWindow::showToolTip()
{
    if (!m_look.toolTip.isEmpty() && !QApplication::activePopupWidget()) {
        QToolTip::showText(QCursor::pos(), m_look.toolTip);
        m_toolTipShown = true;
    }
}

void TrayIconWindow::hideToolTip()
{
    m_toolTipDelay.stop();
    if (m_toolTipShown) {
        QToolTip::hideText();
        m_toolTipShown = false;
    }
}

void TrayIconWindow::setNames()
{
    // Trays that show the window elsewhere, as a list of items or another protocol's item, know no other name.
    const QString &title = m_look.title.isEmpty() ? m_look.toolTip : m_look.title;
    setWindowName(m_window, title.isEmpty() ? className : title.toUtf8());
}

void TrayIconWindow::paint()
{
    const int side = std::min(m_geometry.width(), m_geometry.height());
    if (!m_mapped || side <= 0) {
        return;
    }
    const QRect area((m_geometry.width() - side) / 2, (m_geometry.height() - side) / 2, side, side);
    ignoreError(xcb_clear_area_checked(XConnection::get(), false, m_window, 0, 0, 0, 0));
    QImage canvas = background(area);
    if (canvas.isNull()) {
        return;
    }
    QPainter painter(&canvas);
    painter.drawImage(QPoint(0, 0), drawIcon(m_look.image, side, m_look.iconLook()));
    if (m_focused) {
        painter.setPen(QGuiApplication::palette().color(QPalette::Highlight));
        painter.drawRect(0, 0, side - 1, side - 1);
    }
    painter.end();
    putPicture(m_window, area.topLeft(), m_cells ? m_cells->pixelsOf(canvas) : canvas, m_visual);
}

QImage TrayIconWindow::background(const QRect &area) const
{
    if (m_kind == Kind::Docked && !m_visual.isTranslucent()) {
        const QImage picture = pictureOf(m_window, area, m_visual);
        return m_cells ? m_cells->coloured(picture) : picture;
    }
    QImage canvas(area.size(), m_cells ? QImage::Format_RGB32 : m_visual.format);
    // Alone, the icon may lie on any picture; on a plate of its own it can be told from it.
    canvas.fill(m_kind == Kind::Alone ? QColor::fromRgba(m_look.plate) : Qt::transparent);
    return canvas;
}

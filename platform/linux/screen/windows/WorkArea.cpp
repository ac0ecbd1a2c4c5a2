#include "platform/linux/screen/windows/WorkArea.h"

#include "platform/linux/include/XConnection.h"
#include "platform/linux/screen/windows/Struts.h"
#include "platform/linux/screen/windows/SwayWorkArea.h"

#include <algorithm>

namespace
{

constexpr std::uint32_t maxDesktops = 64;
constexpr std::uint32_t maxMonitors = 64;
constexpr std::size_t numbersOfAnArea = 4;

xcb_get_property_cookie_t askForNumbers(const QByteArray &property, std::uint32_t count)
{
    return xcb_get_property(XConnection::get(), false, XConnection::screen()->root, XConnection::atom(property),
                            XCB_ATOM_CARDINAL, 0, count);
}

std::span<const std::uint32_t> numbersOf(const XcbReply<xcb_get_property_reply_t> &reply)
{
    if (!reply || reply->format != 32) {
        return {};
    }
    return {static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get())), reply->value_len};
}

xcb_get_property_cookie_t askForMonitors(std::uint32_t desktop)
{
    return askForNumbers("_GTK_WORKAREAS_D" + QByteArray::number(desktop), maxMonitors * numbersOfAnArea);
}

XcbReply<xcb_get_property_reply_t> replyTo(xcb_get_property_cookie_t cookie)
{
    return XcbReply<xcb_get_property_reply_t>(xcb_get_property_reply(XConnection::get(), cookie, nullptr));
}

std::optional<QRect> readArea(std::span<const std::uint32_t, numbersOfAnArea> area)
{
    constexpr std::uint32_t maxOfX = 0xffff; // Anybody may write the property; more than that no X screen has.
    if (std::ranges::any_of(area, [](std::uint32_t number) { return number > maxOfX; })) {
        return std::nullopt;
    }
    const auto number = [&](std::size_t index) { return static_cast<int>(area[index]); };
    return QRect(number(0), number(1), number(2), number(3));
}

} // namespace

std::optional<QRect> workAreaOf(std::span<const std::uint32_t> areas, std::uint32_t desktop)
{
    const std::size_t count = areas.size() / numbersOfAnArea;
    if (count == 0) {
        return std::nullopt;
    }
    return readArea(areas.subspan((desktop < count ? desktop : 0) * numbersOfAnArea).first<numbersOfAnArea>());
}

std::optional<QRect> workAreaOfMonitor(std::span<const std::uint32_t> areas, const QRect &monitor)
{
    for (; areas.size() >= numbersOfAnArea; areas = areas.subspan(numbersOfAnArea)) {
        const std::optional<QRect> area = readArea(areas.first<numbersOfAnArea>());
        if (area && monitor.contains(*area)) {
            return area;
        }
    }
    return std::nullopt;
}

QRect workAreaOn(const QRect &monitor, const std::optional<QRect> &workArea)
{
    const QRect common = workArea ? monitor.intersected(*workArea) : monitor;
    const bool isUsable = common.width() * 2 >= monitor.width() && common.height() * 2 >= monitor.height();
    return isUsable ? common : monitor;
}

WorkAreaQuestion::WorkAreaQuestion()
    : m_areas(askForNumbers("_NET_WORKAREA", maxDesktops * numbersOfAnArea))
    , m_desktop(askForNumbers("_NET_CURRENT_DESKTOP", 1))
    , m_areasOfMonitors(askForMonitors(0))
    , m_screen(xcb_get_geometry(XConnection::get(), XConnection::screen()->root))
{
    xcb_flush(XConnection::get());
}

WorkAreaQuestion::~WorkAreaQuestion()
{
    if (m_isAsked) {
        for (const auto sequence :
             {m_areas.sequence, m_desktop.sequence, m_areasOfMonitors.sequence, m_screen.sequence}) {
            xcb_discard_reply(XConnection::get(), sequence);
        }
    }
}

std::optional<QRect> WorkAreaQuestion::answer(const QRect &monitor)
{
    m_isAsked = false;
    const XcbReply<xcb_get_property_reply_t> areas = replyTo(m_areas);
    const XcbReply<xcb_get_property_reply_t> current = replyTo(m_desktop);
    XcbReply<xcb_get_property_reply_t> areasOfMonitors = replyTo(m_areasOfMonitors);
    const XcbReply<xcb_get_geometry_reply_t> screen(xcb_get_geometry_reply(XConnection::get(), m_screen, nullptr));
    const std::uint32_t desktop = numbersOf(current).empty() ? 0 : numbersOf(current)[0];
    if (desktop != 0 && !numbersOf(areasOfMonitors).empty()) {
        areasOfMonitors = replyTo(askForMonitors(desktop));
    }
    if (const std::optional<QRect> area = workAreaOfMonitor(numbersOf(areasOfMonitors), monitor)) {
        return area;
    }
    const std::optional<QRect> area = workAreaOf(numbersOf(areas), desktop);
    const QSize size = screen ? QSize(screen->width, screen->height) : monitor.size();
    if (!area) {
        return SwayWorkArea::workAreaOn(monitor);
    }
    if (monitor.size() == size) {
        return area; // There is but one monitor.
    }
    return workAreaByStruts(monitor, size, *area, strutsOfWindows());
}

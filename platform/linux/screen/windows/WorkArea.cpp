#include "platform/linux/screen/windows/WorkArea.h"

#include "platform/linux/include/XConnection.h"

#include <algorithm>

namespace
{

constexpr std::uint32_t maxDesktops = 64;
constexpr std::size_t numbersOfAnArea = 4;

xcb_get_property_cookie_t askForNumbers(const char *property, std::uint32_t count)
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

} // namespace

std::optional<QRect> workAreaOf(std::span<const std::uint32_t> areas, std::uint32_t desktop)
{
    const std::size_t count = areas.size() / numbersOfAnArea;
    if (count == 0) {
        return std::nullopt;
    }
    const auto area = areas.subspan((desktop < count ? desktop : 0) * numbersOfAnArea, numbersOfAnArea);
    constexpr std::uint32_t maxOfX = 0xffff; // Anybody may write the property; more than that no X screen has.
    if (std::ranges::any_of(area, [](std::uint32_t number) { return number > maxOfX; })) {
        return std::nullopt;
    }
    const auto number = [&](std::size_t index) { return static_cast<int>(area[index]); };
    return QRect(number(0), number(1), number(2), number(3));
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
{
    xcb_flush(XConnection::get());
}

WorkAreaQuestion::~WorkAreaQuestion()
{
    if (m_isAsked) {
        xcb_discard_reply(XConnection::get(), m_areas.sequence);
        xcb_discard_reply(XConnection::get(), m_desktop.sequence);
    }
}

std::optional<QRect> WorkAreaQuestion::answer()
{
    m_isAsked = false;
    const XcbReply<xcb_get_property_reply_t> areas(xcb_get_property_reply(XConnection::get(), m_areas, nullptr));
    const XcbReply<xcb_get_property_reply_t> desktop(xcb_get_property_reply(XConnection::get(), m_desktop, nullptr));
    const std::span<const std::uint32_t> current = numbersOf(desktop);
    return workAreaOf(numbersOf(areas), current.empty() ? 0 : current[0]);
}

#include "platform/linux/screen/windows/Struts.h"

#include "platform/linux/include/XConnection.h"

#include <algorithm>
#include <array>

namespace
{

constexpr std::uint32_t maxClients = 200;
constexpr std::size_t numbersOfAStrut = 4;
constexpr std::size_t numbersOfAPartialStrut = 12;
constexpr std::uint32_t maxOfAnXScreen = 0xffff;

/// One edge of a monitor, with depths counted from that edge of the X screen inwards.
struct MonitorEdge {
    int outside; ///< From the screen's edge to the monitor's.
    int extent;  ///< From there to the monitor's opposite edge.
    int begin;   ///< Of the monitor, along the edge.
    int end;
};

int depthIn(const MonitorEdge &edge, int publishedDepth, std::span<const Strut> struts, Strut::Side Strut::*side)
{
    const auto isOfThatDepth = [&](const Strut &strut) { return (strut.*side).depth == publishedDepth; };
    if (publishedDepth > 0 && std::ranges::none_of(struts, isOfThatDepth)) {
        return std::max(publishedDepth - edge.outside, 0);
    }
    int deepest = 0;
    for (const Strut &strut : struts) {
        const Strut::Side &each = strut.*side;
        const int depth = each.depth - edge.outside;
        if (each.begin <= edge.end && each.end >= edge.begin && depth * 2 <= edge.extent) {
            deepest = std::max(deepest, depth);
        }
    }
    return deepest;
}

xcb_get_property_cookie_t askForStrut(xcb_connection_t *x, xcb_window_t window, const char *property, std::size_t count)
{
    return xcb_get_property(x, false, window, XConnection::atom(property), XCB_ATOM_CARDINAL, 0,
                            static_cast<std::uint32_t>(count));
}

std::optional<Strut> readStrut(xcb_connection_t *x, xcb_get_property_cookie_t cookie)
{
    const XcbReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(x, cookie, nullptr));
    if (!reply || reply->format != 32) {
        return std::nullopt;
    }
    return strutOf({static_cast<const std::uint32_t *>(xcb_get_property_value(reply.get())), reply->value_len});
}

} // namespace

std::optional<Strut> strutOf(std::span<const std::uint32_t> numbers)
{
    const bool isPartial = numbers.size() == numbersOfAPartialStrut;
    if ((!isPartial && numbers.size() != numbersOfAStrut) ||
        std::ranges::any_of(numbers, [](std::uint32_t number) { return number > maxOfAnXScreen; })) {
        return std::nullopt;
    }
    // Left, right, top, bottom; then in the same order where each begins and ends.
    const auto side = [&](std::size_t index) {
        const std::size_t range = numbersOfAStrut + 2 * index;
        return Strut::Side{.depth = static_cast<int>(numbers[index]),
                           .begin = isPartial ? static_cast<int>(numbers[range]) : 0,
                           .end = static_cast<int>(isPartial ? numbers[range + 1] : maxOfAnXScreen)};
    };
    return Strut{.left = side(0), .right = side(1), .top = side(2), .bottom = side(3)};
}

QRect workAreaByStruts(const QRect &monitor, const QSize &screen, const QRect &workArea, std::span<const Strut> struts)
{
    const int fromRight = screen.width() - monitor.x() - monitor.width();
    const int fromBottom = screen.height() - monitor.y() - monitor.height();
    const MonitorEdge leftEdge{monitor.x(), monitor.width(), monitor.top(), monitor.bottom()};
    const MonitorEdge rightEdge{fromRight, monitor.width(), monitor.top(), monitor.bottom()};
    const MonitorEdge topEdge{monitor.y(), monitor.height(), monitor.left(), monitor.right()};
    const MonitorEdge bottomEdge{fromBottom, monitor.height(), monitor.left(), monitor.right()};
    return monitor.adjusted(
        depthIn(leftEdge, workArea.x(), struts, &Strut::left), depthIn(topEdge, workArea.y(), struts, &Strut::top),
        -depthIn(rightEdge, screen.width() - workArea.x() - workArea.width(), struts, &Strut::right),
        -depthIn(bottomEdge, screen.height() - workArea.y() - workArea.height(), struts, &Strut::bottom));
}

std::vector<Strut> strutsOfWindows()
{
    struct Question {
        xcb_get_property_cookie_t partial;
        xcb_get_property_cookie_t whole;
    };
    xcb_connection_t *x = XConnection::get();
    const auto listCookie = xcb_get_property(x, false, XConnection::screen()->root,
                                             XConnection::atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW, 0, maxClients);
    const XcbReply<xcb_get_property_reply_t> list(xcb_get_property_reply(x, listCookie, nullptr));
    if (!list || list->format != 32) {
        return {};
    }
    std::vector<Question> questions;
    for (const xcb_window_t window :
         std::span(static_cast<const xcb_window_t *>(xcb_get_property_value(list.get())), list->value_len)) {
        questions.push_back({askForStrut(x, window, "_NET_WM_STRUT_PARTIAL", numbersOfAPartialStrut),
                             askForStrut(x, window, "_NET_WM_STRUT", numbersOfAStrut)});
    }
    std::vector<Strut> struts;
    for (const Question &question : questions) {
        const std::optional<Strut> partial = readStrut(x, question.partial);
        const std::optional<Strut> whole = readStrut(x, question.whole);
        if (partial || whole) {
            struts.push_back(partial ? *partial : *whole);
        }
    }
    return struts;
}

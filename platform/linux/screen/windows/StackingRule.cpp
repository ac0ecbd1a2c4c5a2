#include "platform/linux/screen/windows/StackingRule.h"

#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/include/XConnection.h"

#include <algorithm>
#include <array>
#include <vector>

namespace
{

/// Of more than that, those that are higher are taken for what ours must not cover.
constexpr std::size_t maxWindowsAbove = 200;

std::vector<xcb_window_t> namesOfThoseAbove(xcb_connection_t *x, xcb_window_t ours)
{
    const auto cookie = xcb_query_tree(x, XConnection::screen()->root);
    const XcbReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(x, cookie, nullptr));
    if (!tree) {
        return {};
    }
    const std::span lowestFirst(xcb_query_tree_children(tree.get()), tree->children_len);
    const auto place = std::ranges::find(lowestFirst, ours);
    if (place == lowestFirst.end()) {
        return {};
    }
    const auto above = lowestFirst.subspan(static_cast<std::size_t>(place - lowestFirst.begin()) + 1);
    const auto asked = above.first(std::min(above.size(), maxWindowsAbove));
    return {asked.begin(), asked.end()};
}

std::vector<WindowAbove> thoseAbove(xcb_connection_t *x, xcb_window_t ours)
{
    struct Question {
        xcb_get_window_attributes_cookie_t attributes;
        xcb_get_geometry_cookie_t geometry;
    };
    const std::vector<xcb_window_t> names = namesOfThoseAbove(x, ours);
    if (names.empty()) {
        return {};
    }
    std::vector<Question> questions;
    questions.reserve(names.size());
    for (const xcb_window_t name : names) {
        questions.push_back({xcb_get_window_attributes(x, name), xcb_get_geometry(x, name)});
    }
    const QRect screen = mainDisplay().value_or(MainDisplay()).bounds;
    std::vector<WindowAbove> windows;
    for (std::size_t i = 0; i < names.size(); ++i) {
        const XcbReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(x, questions[i].attributes, nullptr));
        const XcbReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(x, questions[i].geometry, nullptr));
        if (attributes && geometry) { // It may have gone meanwhile.
            const QRect place(geometry->x, geometry->y, geometry->width + 2 * geometry->border_width,
                              geometry->height + 2 * geometry->border_width);
            windows.push_back({names[i], attributes->map_state == XCB_MAP_STATE_VIEWABLE,
                               attributes->override_redirect != 0, place.contains(screen)});
        }
    }
    return windows;
}

} // namespace

std::optional<xcb_window_t> windowToRiseAbove(std::span<const WindowAbove> aboveOurs)
{
    std::optional<xcb_window_t> highest;
    for (const WindowAbove &each : aboveOurs) {
        if (each.isShown && each.isOverrideRedirect && each.fillsTheScreen) {
            break;
        }
        if (each.isShown && !each.isOverrideRedirect) {
            highest = each.window;
        }
    }
    return highest;
}

void riseAboveWindowsOfOthers(xcb_window_t ours)
{
    xcb_connection_t *x = XConnection::get();
    if (const std::optional<xcb_window_t> lower = windowToRiseAbove(thoseAbove(x, ours))) {
        const std::array<std::uint32_t, 2> values = {*lower, XCB_STACK_MODE_ABOVE};
        const auto cookie = xcb_configure_window_checked(
            x, ours, XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values.data());
        xcb_discard_reply(x, cookie.sequence); // It may have gone meanwhile.
        xcb_flush(x);
    }
}

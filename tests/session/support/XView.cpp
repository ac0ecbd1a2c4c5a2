#include "tests/session/support/XView.h"

#include <xcb/randr.h>
#include <xcb/res.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <span>
#include <vector>

namespace
{
QRect toRect(const xcb_get_geometry_reply_t &geometry)
{
    return {geometry.x, geometry.y, geometry.width, geometry.height};
}
} // namespace

QList<XWindow> XView::windowsOf(qint64 pid) const
{
    QList<XWindow> found;
    collect(root(), 0, pid, found);
    return found;
}

void XView::collect(xcb_window_t window, qint64 windowPid, qint64 wanted, QList<XWindow> &found) const
{
    const XReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection(), xcb_query_tree(connection(), window), nullptr));
    if (!tree) {
        return;
    }
    const xcb_window_t *children = xcb_query_tree_children(tree.get());
    for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
        // Each of these fails once the window has gone, which may happen between any two of them.
        const auto attributesCookie = xcb_get_window_attributes(connection(), children[i]);
        const auto geometryCookie = xcb_get_geometry(connection(), children[i]);
        const auto placeCookie = xcb_translate_coordinates(connection(), children[i], root(), 0, 0);
        const XReply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(connection(), attributesCookie, nullptr));
        const XReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(connection(), geometryCookie, nullptr));
        const XReply<xcb_translate_coordinates_reply_t> place(
            xcb_translate_coordinates_reply(connection(), placeCookie, nullptr));
        if (!attributes || !geometry || !place || attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
            continue;
        }
        const qint64 owner = pidOf(children[i]);
        if (owner == wanted) {
            QRect rect = toRect(*geometry);
            rect.moveTo(place->dst_x, place->dst_y);
            found.append({children[i], owner, windowPid, rect, attributes->override_redirect != 0});
        } else {
            collect(children[i], owner, wanted, found);
        }
    }
}

QImage XView::grab(const QRect &area) const
{
    const auto cookie =
        xcb_get_image(connection(), XCB_IMAGE_FORMAT_Z_PIXMAP, root(), static_cast<std::int16_t>(area.x()),
                      static_cast<std::int16_t>(area.y()), static_cast<std::uint16_t>(area.width()),
                      static_cast<std::uint16_t>(area.height()), 0xFFFFFFFF);
    const XReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection(), cookie, nullptr));
    if (!reply) {
        return {};
    }
    if (reply->depth == 8) {
        QImage pixels(xcb_get_image_data(reply.get()), area.width(), area.height(), qsizetype{area.width() + 3} / 4 * 4,
                      QImage::Format_Indexed8);
        pixels.setColorTable(coloursOfCells());
        return pixels.convertToFormat(QImage::Format_RGB32);
    }
    // At depth 24 a pixel is four bytes and a row needs no padding.
    return QImage(xcb_get_image_data(reply.get()), area.width(), area.height(), QImage::Format_RGB32).copy();
}

QList<QRgb> XView::coloursOfCells() const
{
    std::vector<std::uint32_t> pixels(256);
    std::iota(pixels.begin(), pixels.end(), 0U);
    const xcb_screen_t *const screen = xcb_setup_roots_iterator(xcb_get_setup(connection())).data;
    const auto cookie = xcb_query_colors(connection(), screen->default_colormap, 256, pixels.data());
    const XReply<xcb_query_colors_reply_t> reply(xcb_query_colors_reply(connection(), cookie, nullptr));
    QList<QRgb> colours;
    for (int i = 0; reply && i < xcb_query_colors_colors_length(reply.get()); ++i) {
        const xcb_rgb_t &colour = xcb_query_colors_colors(reply.get())[i];
        colours.append(qRgb(colour.red >> 8, colour.green >> 8, colour.blue >> 8));
    }
    return colours;
}

QSize XView::screenSize() const
{
    const XReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection(), xcb_get_geometry(connection(), root()), nullptr));
    return geometry ? toRect(*geometry).size() : QSize();
}

QList<QSize> XView::modeSizes() const
{
    const XReply<xcb_randr_get_screen_resources_current_reply_t> resources(xcb_randr_get_screen_resources_current_reply(
        connection(), xcb_randr_get_screen_resources_current(connection(), root()), nullptr));
    if (!resources) {
        return {};
    }
    const std::span outputs(xcb_randr_get_screen_resources_current_outputs(resources.get()), resources->num_outputs);
    const std::span modes(xcb_randr_get_screen_resources_current_modes(resources.get()), resources->num_modes);
    QList<QSize> sizes;
    for (const xcb_randr_output_t output : outputs) {
        const XReply<xcb_randr_get_output_info_reply_t> info(xcb_randr_get_output_info_reply(
            connection(), xcb_randr_get_output_info(connection(), output, resources->config_timestamp), nullptr));
        if (!info || info->crtc == XCB_NONE) {
            continue;
        }
        for (const xcb_randr_mode_t id : std::span(xcb_randr_get_output_info_modes(info.get()), info->num_modes)) {
            const auto mode = std::ranges::find(modes, id, &xcb_randr_mode_info_t::id);
            sizes.append(mode == modes.end() ? QSize() : QSize(mode->width, mode->height));
        }
        break;
    }
    return sizes;
}

xcb_window_t XView::topLevelOf(xcb_window_t window) const
{
    while (true) {
        const XReply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection(), xcb_query_tree(connection(), window), nullptr));
        if (!tree || tree->parent == root() || tree->parent == XCB_NONE) {
            return window;
        }
        window = tree->parent;
    }
}

bool XView::isInFront(xcb_window_t one, xcb_window_t other) const
{
    const XReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection(), xcb_query_tree(connection(), root()), nullptr));
    if (!tree) {
        return false;
    }
    const std::span bottomFirst(xcb_query_tree_children(tree.get()), tree->children_len);
    return std::ranges::find(bottomFirst, topLevelOf(one)) > std::ranges::find(bottomFirst, topLevelOf(other));
}

QSize XView::leastSizeOf(xcb_window_t window) const
{
    constexpr std::uint32_t count = 18; // Of WM_SIZE_HINTS, as the inter-client conventions have it.
    const auto cookie =
        xcb_get_property(connection(), 0, window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 0, count);
    const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection(), cookie, nullptr));
    if (!reply || reply->format != 32 || reply->value_len != count) {
        return {};
    }
    const auto *const hints = static_cast<const std::int32_t *>(xcb_get_property_value(reply.get()));
    return {hints[5], hints[6]};
}

qint64 XView::focusOwnerPid() const
{
    const XReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr));
    return reply && reply->focus > XCB_INPUT_FOCUS_POINTER_ROOT ? pidOf(reply->focus) : 0;
}

qint64 XView::selectionOwnerPid(const QByteArray &selection) const
{
    const auto cookie = xcb_get_selection_owner(connection(), atom(selection));
    const XReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(connection(), cookie, nullptr));
    return reply && reply->owner ? pidOf(reply->owner) : 0;
}

bool XView::hasWindowManager() const
{
    // The root window names a window of the manager's. One that has gone may have left its name there.
    const auto checkWindowOf = [this](xcb_window_t window) {
        const auto cookie =
            xcb_get_property(connection(), false, window, atom("_NET_SUPPORTING_WM_CHECK"), XCB_ATOM_WINDOW, 0, 1);
        const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection(), cookie, nullptr));
        return reply && xcb_get_property_value_length(reply.get()) == sizeof(xcb_window_t)
                   ? *static_cast<const xcb_window_t *>(xcb_get_property_value(reply.get()))
                   : xcb_window_t{XCB_NONE};
    };
    const xcb_window_t window = checkWindowOf(root());
    return window != XCB_NONE && checkWindowOf(window) == window;
}

#include "platform/linux/include/MainDisplay.h"

#include "platform/linux/include/XConnection.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>
#include <map>
#include <vector>

std::optional<std::size_t> pickMainOutput(xcb_randr_output_t primary, std::span<const DisplayOutput> outputs)
{
    const auto shows = [](const DisplayOutput &output) { return output.connected && output.crtc != XCB_NONE; };
    auto chosen = std::ranges::find_if(
        outputs, [&](const DisplayOutput &output) { return output.output == primary && shows(output); });
    if (chosen == outputs.end()) {
        chosen = std::ranges::find_if(outputs, shows);
    }
    if (chosen == outputs.end()) {
        return std::nullopt;
    }
    return chosen - outputs.begin();
}

namespace
{
/// All of the X screen, as a display without an output.
std::optional<MainDisplay> wholeScreen(xcb_connection_t *x, xcb_window_t root)
{
    const XcbReply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(x, xcb_get_geometry(x, root), nullptr));
    return size ? std::optional(MainDisplay{.bounds = QRect(0, 0, size->width, size->height)}) : std::nullopt;
}
} // namespace

std::optional<MainDisplay> mainDisplay()
{
    xcb_connection_t *x = XConnection::get();
    const xcb_screen_t *screen = XConnection::screen();
    if (!x || !screen) {
        return std::nullopt;
    }
    const std::optional<MainDisplay> display = mainDisplay(x, screen->root);
    return display ? display : wholeScreen(x, screen->root);
}

std::optional<MainDisplay> mainDisplay(xcb_connection_t *x, xcb_window_t root)
{
    if (!XConnection::extension(x, xcb_randr_id)) {
        return std::nullopt;
    }
    const auto resourcesCookie = xcb_randr_get_screen_resources_current(x, root);
    const auto primaryCookie = xcb_randr_get_output_primary(x, root);
    const XcbReply<xcb_randr_get_screen_resources_current_reply_t> resources(
        xcb_randr_get_screen_resources_current_reply(x, resourcesCookie, nullptr));
    const XcbReply<xcb_randr_get_output_primary_reply_t> primary(
        xcb_randr_get_output_primary_reply(x, primaryCookie, nullptr));
    if (!resources) {
        return std::nullopt;
    }

    // All at once: a pop-up waits for these answers, and a round to the server and back takes longer than they do.
    const std::span<const xcb_randr_output_t> ids(
        xcb_randr_get_screen_resources_current_outputs(resources.get()),
        static_cast<std::size_t>(xcb_randr_get_screen_resources_current_outputs_length(resources.get())));
    std::vector<xcb_randr_get_output_info_cookie_t> outputCookies;
    for (const xcb_randr_output_t id : ids) {
        outputCookies.push_back(xcb_randr_get_output_info(x, id, resources->config_timestamp));
    }
    const std::span<const xcb_randr_crtc_t> crtcs(
        xcb_randr_get_screen_resources_current_crtcs(resources.get()),
        static_cast<std::size_t>(xcb_randr_get_screen_resources_current_crtcs_length(resources.get())));
    std::vector<xcb_randr_get_crtc_info_cookie_t> crtcCookies;
    for (const xcb_randr_crtc_t crtc : crtcs) {
        crtcCookies.push_back(xcb_randr_get_crtc_info(x, crtc, resources->config_timestamp));
    }

    std::vector<DisplayOutput> outputs;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const XcbReply<xcb_randr_get_output_info_reply_t> info(
            xcb_randr_get_output_info_reply(x, outputCookies[i], nullptr));
        if (info) {
            outputs.push_back({ids[i], info->crtc, info->connection == XCB_RANDR_CONNECTION_CONNECTED});
        }
    }
    std::map<xcb_randr_crtc_t, QRect> bounds;
    for (std::size_t i = 0; i < crtcs.size(); ++i) {
        const XcbReply<xcb_randr_get_crtc_info_reply_t> info(xcb_randr_get_crtc_info_reply(x, crtcCookies[i], nullptr));
        if (info) {
            bounds[crtcs[i]] = QRect(info->x, info->y, info->width, info->height);
        }
    }

    const std::optional<std::size_t> chosen = pickMainOutput(primary ? primary->output : XCB_NONE, outputs);
    if (!chosen || !bounds.contains(outputs[*chosen].crtc)) {
        return std::nullopt;
    }
    const DisplayOutput &output = outputs[*chosen];
    return MainDisplay{output.output, output.crtc, bounds[output.crtc]};
}

ScreenCoordinates screenCoordinates()
{
    const std::optional<MainDisplay> display = mainDisplay();
    const QScreen *const primary = QGuiApplication::primaryScreen();
    ScreenCoordinates coordinates{display ? display->bounds : QRect(), primary ? primary->devicePixelRatio() : 1.0};
    if (coordinates.ratio != 1) {
        const QList<QScreen *> screens = QGuiApplication::screens();
        for (const QScreen *screen : screens) {
            const QRect inWindows = screen->geometry();
            const QRect device(inWindows.topLeft(), (QSizeF(inWindows.size()) * coordinates.ratio).toSize());
            if (device.topLeft() != coordinates.mainScreen.topLeft()) {
                coordinates.otherScreens.append(device);
            }
        }
    }
    return coordinates;
}

#include "tools/kivservice/DisplaySwitcher.h"

#include "platform/linux/include/MainDisplay.h"
#include "platform/linux/include/XConnection.h"
#include "tools/kivservice/ModeTiming.h"

#include <QRect>

#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

namespace
{

struct Disconnect {
    void operator()(xcb_connection_t *connection) const { xcb_disconnect(connection); }
};
using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

/// A CRTC's present setting: where it is, its mode, the outputs that it drives.
struct CrtcSetting {
    xcb_randr_crtc_t crtc;
    QRect bounds;
    xcb_randr_mode_t mode;
    std::uint16_t rotation;
    std::vector<xcb_randr_output_t> outputs;
};

bool succeeded(xcb_connection_t *x, xcb_void_cookie_t cookie)
{
    const XcbReply<xcb_generic_error_t> error(xcb_request_check(x, cookie));
    return !error;
}

class DisplaySwitcher final
{
public:
    DisplaySwitcher(xcb_connection_t *x, const xcb_screen_t &screen, const MainDisplay &display)
        : m_x(x)
        , m_screen(screen)
        , m_display(display)
        , m_resources(xcb_randr_get_screen_resources_current_reply(
              x, xcb_randr_get_screen_resources_current(x, screen.root), nullptr))
    {
        readSettings();
    }

    /// Null when the size is within the server's limits.
    [[nodiscard]] QString refusal(DisplaySize size) const
    {
        const XcbReply<xcb_randr_get_screen_size_range_reply_t> range(
            xcb_randr_get_screen_size_range_reply(m_x, xcb_randr_get_screen_size_range(m_x, m_screen.root), nullptr));
        if (!m_resources || !range || !m_main) {
            return QStringLiteral("the X server does not tell of its displays");
        }
        const QSize needed = screenSizeWith(size);
        if (needed.width() < range->min_width || needed.width() > range->max_width ||
            needed.height() < range->min_height || needed.height() > range->max_height) {
            return QStringLiteral("%1 x %2 is outside the X server's limits, %3 x %4 to %5 x %6")
                .arg(size.width)
                .arg(size.height)
                .arg(range->min_width)
                .arg(range->min_height)
                .arg(range->max_width)
                .arg(range->max_height);
        }
        return {};
    }

    [[nodiscard]] bool switchTo(DisplaySize size)
    {
        const xcb_randr_mode_t listed = listedMode(size);
        if (listed != XCB_NONE) {
            return apply(listed, size);
        }
        const xcb_randr_mode_t added = addMode(size);
        if (added == XCB_NONE) {
            return false;
        }
        if (apply(added, size)) {
            return true;
        }
        xcb_randr_delete_output_mode(m_x, m_display.output, added);
        xcb_randr_destroy_mode(m_x, added);
        return false;
    }

private:
    void readSettings()
    {
        if (!m_resources) {
            return;
        }
        const std::span crtcs(xcb_randr_get_screen_resources_current_crtcs(m_resources.get()), m_resources->num_crtcs);
        for (const xcb_randr_crtc_t crtc : crtcs) {
            const XcbReply<xcb_randr_get_crtc_info_reply_t> info(xcb_randr_get_crtc_info_reply(
                m_x, xcb_randr_get_crtc_info(m_x, crtc, m_resources->config_timestamp), nullptr));
            if (!info || info->mode == XCB_NONE) {
                continue;
            }
            const std::span outputs(xcb_randr_get_crtc_info_outputs(info.get()), info->num_outputs);
            CrtcSetting setting{crtc,
                                QRect(info->x, info->y, info->width, info->height),
                                info->mode,
                                info->rotation,
                                {outputs.begin(), outputs.end()}};
            if (crtc == m_display.crtc) {
                m_main = std::move(setting);
            } else {
                m_others.push_back(std::move(setting));
            }
        }
    }

    /// What the whole screen has to be when the main display has that size and the others stay.
    [[nodiscard]] QSize screenSizeWith(DisplaySize size) const
    {
        QRect all(m_display.bounds.topLeft(), QSize(size.width, size.height));
        for (const CrtcSetting &other : m_others) {
            all |= other.bounds;
        }
        return {all.x() + all.width(), all.y() + all.height()};
    }

    [[nodiscard]] std::span<const xcb_randr_mode_info_t> knownModes() const
    {
        return {xcb_randr_get_screen_resources_current_modes(m_resources.get()), m_resources->num_modes};
    }

    /// The output's first mode of that size; XCB_NONE when it has none.
    [[nodiscard]] xcb_randr_mode_t listedMode(DisplaySize size) const
    {
        const XcbReply<xcb_randr_get_output_info_reply_t> info(xcb_randr_get_output_info_reply(
            m_x, xcb_randr_get_output_info(m_x, m_display.output, m_resources->config_timestamp), nullptr));
        if (!info) {
            return XCB_NONE;
        }
        const std::span listed(xcb_randr_get_output_info_modes(info.get()), info->num_modes);
        for (const xcb_randr_mode_t id : listed) {
            const auto mode = std::ranges::find(knownModes(), id, &xcb_randr_mode_info_t::id);
            if (mode != knownModes().end() && mode->width == size.width && mode->height == size.height) {
                return id;
            }
        }
        return XCB_NONE;
    }

    /// Makes a mode of that size and lists it with the output. XCB_NONE when the server will not have it.
    [[nodiscard]] xcb_randr_mode_t addMode(DisplaySize size)
    {
        const QByteArray name = QByteArray::number(size.width) + 'x' + QByteArray::number(size.height);
        xcb_randr_mode_info_t timing = reducedBlankingMode(size);
        timing.name_len = static_cast<std::uint16_t>(name.size());
        const XcbReply<xcb_randr_create_mode_reply_t> made(xcb_randr_create_mode_reply(
            m_x,
            xcb_randr_create_mode(m_x, m_screen.root, timing, static_cast<std::uint32_t>(name.size()),
                                  name.constData()),
            nullptr));
        const xcb_randr_mode_t mode = made ? made->mode : unlistedMode(size);
        if (mode == XCB_NONE) {
            return XCB_NONE;
        }
        if (!succeeded(m_x, xcb_randr_add_output_mode_checked(m_x, m_display.output, mode))) {
            xcb_randr_destroy_mode(m_x, mode);
            return XCB_NONE;
        }
        return mode;
    }

    /// A mode of that size that the server knows but the output does not list, such as one that an earlier call made.
    [[nodiscard]] xcb_randr_mode_t unlistedMode(DisplaySize size) const
    {
        const auto mode = std::ranges::find_if(knownModes(), [size](const xcb_randr_mode_info_t &known) {
            return known.width == size.width && known.height == size.height;
        });
        return mode == knownModes().end() ? XCB_NONE : mode->id;
    }

    [[nodiscard]] bool setCrtc(const CrtcSetting &setting)
    {
        const XcbReply<xcb_randr_set_crtc_config_reply_t> reply(xcb_randr_set_crtc_config_reply(
            m_x,
            xcb_randr_set_crtc_config(m_x, setting.crtc, XCB_CURRENT_TIME, m_resources->config_timestamp,
                                      static_cast<std::int16_t>(setting.bounds.x()),
                                      static_cast<std::int16_t>(setting.bounds.y()), setting.mode, setting.rotation,
                                      static_cast<std::uint32_t>(setting.outputs.size()), setting.outputs.data()),
            nullptr));
        return reply && reply->status == XCB_RANDR_SET_CONFIG_SUCCESS;
    }

    [[nodiscard]] bool setScreenSize(QSize size)
    {
        // At 96 dots to the inch, the resolution that remote desktops assume.
        const auto millimetres = [](int pixels) { return static_cast<std::uint32_t>(std::lround(pixels * 25.4 / 96)); };
        return succeeded(m_x,
                         xcb_randr_set_screen_size_checked(m_x, m_screen.root, static_cast<std::uint16_t>(size.width()),
                                                           static_cast<std::uint16_t>(size.height()),
                                                           millimetres(size.width()), millimetres(size.height())));
    }

    [[nodiscard]] QSize presentScreenSize() const
    {
        const XcbReply<xcb_get_geometry_reply_t> root(
            xcb_get_geometry_reply(m_x, xcb_get_geometry(m_x, m_screen.root), nullptr));
        return root ? QSize(root->width, root->height) : QSize();
    }

    /// Sets screen and CRTC as one step, or leaves both as they were.
    [[nodiscard]] bool apply(xcb_randr_mode_t mode, DisplaySize size)
    {
        CrtcSetting wanted = *m_main;
        wanted.mode = mode;
        CrtcSetting off = *m_main;
        off.mode = XCB_NONE;
        off.rotation = XCB_RANDR_ROTATION_ROTATE_0;
        off.outputs.clear();

        xcb_grab_server(m_x); // Nobody sees the moment in which the display is off.
        const QSize before = presentScreenSize();
        // The screen may not become smaller than what a CRTC shows, so the main one is off in between.
        const bool done = setCrtc(off) && setScreenSize(screenSizeWith(size)) && setCrtc(wanted);
        if (!done) {
            [[maybe_unused]] const bool restored = setScreenSize(before) && setCrtc(*m_main);
        }
        xcb_ungrab_server(m_x);
        xcb_flush(m_x);
        return done;
    }

    xcb_connection_t *const m_x;
    const xcb_screen_t &m_screen;
    const MainDisplay m_display;
    const XcbReply<xcb_randr_get_screen_resources_current_reply_t> m_resources;
    std::optional<CrtcSetting> m_main;
    std::vector<CrtcSetting> m_others;
};

} // namespace

QString switchMainDisplay(DisplaySize size)
{
    int screenNumber = 0;
    const Connection connection(xcb_connect(nullptr, &screenNumber));
    if (xcb_connection_has_error(connection.get())) {
        return QStringLiteral("the X server does not answer (DISPLAY)");
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(connection.get()));
    for (int i = 0; i < screenNumber && screens.rem > 1; ++i) {
        xcb_screen_next(&screens);
    }
    const std::optional<MainDisplay> display = mainDisplay(connection.get(), screens.data->root);
    if (!display) {
        return QStringLiteral("the X server has no display that can be switched");
    }
    if (display->bounds.size() == QSize(size.width, size.height)) {
        return {};
    }
    DisplaySwitcher switcher(connection.get(), *screens.data, *display);
    if (QString refusal = switcher.refusal(size); !refusal.isNull()) {
        return refusal;
    }
    return switcher.switchTo(size)
               ? QString()
               : QStringLiteral("the X server did not take %1 x %2").arg(size.width).arg(size.height);
}

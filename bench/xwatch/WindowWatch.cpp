#include "bench/xwatch/WindowWatch.h"

#include <xcb/xtest.h>

#include <chrono>
#include <utility>

std::int64_t now()
{
    // libstdc++'s is CLOCK_MONOTONIC, which is one for all processes.
    return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

WindowWatch::WindowWatch(Report report)
    : m_report(std::move(report))
{
    int screenNumber = 0;
    m_connection.reset(xcb_connect(nullptr, &screenNumber));
    if (!isConnected()) {
        return;
    }
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(m_connection.get()));
    for (; screenNumber > 0 && screens.rem > 1; --screenNumber) {
        xcb_screen_next(&screens);
    }
    m_root = screens.data->root;
    const std::uint32_t mask = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
    xcb_change_window_attributes(m_connection.get(), m_root, XCB_CW_EVENT_MASK, &mask);
    sync();
}

bool WindowWatch::isConnected() const
{
    return xcb_connection_has_error(m_connection.get()) == 0;
}

int WindowWatch::fileDescriptor() const
{
    return xcb_get_file_descriptor(m_connection.get());
}

bool WindowWatch::handleEvents()
{
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection.get())}) {
        handle(*event);
    }
    xcb_flush(m_connection.get());
    return isConnected();
}

void WindowWatch::handle(const xcb_generic_event_t &event)
{
    switch (event.response_type & 0x7f) {
    case XCB_CREATE_NOTIFY: {
        const auto &create = reinterpret_cast<const xcb_create_notify_event_t &>(event);
        m_windows[create.window] = {create.x, create.y, create.width, create.height, false, false};
        // Its own events from now on: an icon leaves the root window for its tray.
        const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(m_connection.get(), create.window, XCB_CW_EVENT_MASK, &mask);
        break;
    }
    case XCB_CONFIGURE_NOTIFY: {
        const auto &configure = reinterpret_cast<const xcb_configure_notify_event_t &>(event);
        if (const auto it = m_windows.find(configure.window); it != m_windows.end()) {
            it->second.x = configure.x;
            it->second.y = configure.y;
            it->second.width = configure.width;
            it->second.height = configure.height;
        }
        break;
    }
    case XCB_REPARENT_NOTIFY: {
        const auto &reparent = reinterpret_cast<const xcb_reparent_notify_event_t &>(event);
        if (const auto it = m_windows.find(reparent.window); it != m_windows.end()) {
            it->second.isEmbedded = reparent.parent != m_root;
            // A quick tray may have mapped it before its events were asked for.
            if (it->second.isEmbedded && !it->second.isMapped && isMapped(reparent.window)) {
                setMapped(reparent.window, true);
            }
        }
        break;
    }
    case XCB_MAP_NOTIFY:
        setMapped(reinterpret_cast<const xcb_map_notify_event_t &>(event).window, true);
        break;
    case XCB_UNMAP_NOTIFY:
        setMapped(reinterpret_cast<const xcb_unmap_notify_event_t &>(event).window, false);
        break;
    case XCB_DESTROY_NOTIFY: {
        const auto &destroy = reinterpret_cast<const xcb_destroy_notify_event_t &>(event);
        setMapped(destroy.window, false);
        m_windows.erase(destroy.window);
        break;
    }
    default:
        break;
    }
}

bool WindowWatch::isMapped(xcb_window_t window)
{
    xcb_connection_t *c = m_connection.get();
    const auto cookie = xcb_get_window_attributes(c, window);
    const XcbReply<xcb_get_window_attributes_reply_t> reply{xcb_get_window_attributes_reply(c, cookie, nullptr)};
    return reply && reply->map_state != XCB_MAP_STATE_UNMAPPED;
}

void WindowWatch::setMapped(xcb_window_t window, bool mapped)
{
    // A window on the root is reported twice, by itself and by the root.
    const auto it = m_windows.find(window);
    if (it != m_windows.end() && it->second.isMapped != mapped) {
        it->second.isMapped = mapped;
        m_report(now(), window, it->second);
    }
}

void WindowWatch::announceOneDesktop()
{
    const std::uint32_t one = 1;
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, m_root, atom("_NET_NUMBER_OF_DESKTOPS"),
                        XCB_ATOM_CARDINAL, 32, 1, &one);
    sync();
}

std::int64_t WindowWatch::click(int x, int y, int button)
{
    movePointer(x, y);
    const std::int64_t time = now();
    xcb_connection_t *c = m_connection.get();
    xcb_test_fake_input(c, XCB_BUTTON_PRESS, static_cast<std::uint8_t>(button), XCB_CURRENT_TIME, m_root, 0, 0, 0);
    xcb_test_fake_input(c, XCB_BUTTON_RELEASE, static_cast<std::uint8_t>(button), XCB_CURRENT_TIME, m_root, 0, 0, 0);
    xcb_flush(c);
    return time;
}

void WindowWatch::movePointer(int x, int y)
{
    xcb_test_fake_input(m_connection.get(), XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, m_root,
                        static_cast<std::int16_t>(x), static_cast<std::int16_t>(y), 0);
    sync();
}

void WindowWatch::pressKey(std::uint8_t keycode)
{
    xcb_connection_t *c = m_connection.get();
    xcb_test_fake_input(c, XCB_KEY_PRESS, keycode, XCB_CURRENT_TIME, m_root, 0, 0, 0);
    xcb_test_fake_input(c, XCB_KEY_RELEASE, keycode, XCB_CURRENT_TIME, m_root, 0, 0, 0);
    xcb_flush(c);
}

void WindowWatch::changeRootProperty()
{
    ++m_changes;
    xcb_change_property(m_connection.get(), XCB_PROP_MODE_REPLACE, m_root, atom("_XWATCH_CHANGES"), XCB_ATOM_CARDINAL,
                        32, 1, &m_changes);
    sync();
}

std::string WindowWatch::placeOf(xcb_window_t window)
{
    xcb_connection_t *c = m_connection.get();
    const auto geometryCookie = xcb_get_geometry(c, window);
    const auto placeCookie = xcb_translate_coordinates(c, window, m_root, 0, 0);
    const XcbReply<xcb_get_geometry_reply_t> geometry{xcb_get_geometry_reply(c, geometryCookie, nullptr)};
    const XcbReply<xcb_translate_coordinates_reply_t> place{xcb_translate_coordinates_reply(c, placeCookie, nullptr)};
    if (!geometry || !place) {
        return {};
    }
    return std::to_string(place->dst_x) + ' ' + std::to_string(place->dst_y) + ' ' + std::to_string(geometry->width) +
           ' ' + std::to_string(geometry->height);
}

xcb_window_t WindowWatch::tray()
{
    xcb_connection_t *c = m_connection.get();
    const auto cookie = xcb_get_selection_owner(c, atom("_NET_SYSTEM_TRAY_S0"));
    const XcbReply<xcb_get_selection_owner_reply_t> reply{xcb_get_selection_owner_reply(c, cookie, nullptr)};
    return reply ? reply->owner : static_cast<xcb_window_t>(XCB_NONE);
}

void WindowWatch::sync()
{
    xcb_connection_t *c = m_connection.get();
    const XcbReply<xcb_get_input_focus_reply_t> reply{xcb_get_input_focus_reply(c, xcb_get_input_focus(c), nullptr)};
}

xcb_atom_t WindowWatch::atom(const std::string &name)
{
    xcb_connection_t *c = m_connection.get();
    const auto cookie = xcb_intern_atom(c, false, static_cast<std::uint16_t>(name.size()), name.c_str());
    const XcbReply<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(c, cookie, nullptr)};
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

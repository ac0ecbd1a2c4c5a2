#include "tests/platform/linux/item/FakeTray.h"

#include "platform/linux/include/XConnection.h"

#include <array>

namespace
{

xcb_visualid_t translucentVisual(const xcb_screen_t *screen)
{
    for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem > 0; xcb_depth_next(&depth)) {
        if (depth.data->depth == 32 && depth.data->visuals_len > 0) {
            return xcb_depth_visuals(depth.data)->visual_id;
        }
    }
    return XCB_NONE;
}

} // namespace

FakeTray::FakeTray(QPoint place, Visual visual)
    : m_connection(xcb_connect(nullptr, nullptr))
    , m_screen(xcb_setup_roots_iterator(xcb_get_setup(m_connection)).data)
    , m_owner(xcb_generate_id(m_connection))
    , m_socket(xcb_generate_id(m_connection))
{
    xcb_create_window(m_connection, XCB_COPY_FROM_PARENT, m_owner, m_screen->root, -10, -10, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);

    const bool translucent = visual == Visual::Translucent;
    const xcb_visualid_t id = translucent ? translucentVisual(m_screen) : m_screen->root_visual;
    const xcb_colormap_t colormap = xcb_generate_id(m_connection);
    xcb_create_colormap(m_connection, XCB_COLORMAP_ALLOC_NONE, colormap, m_screen->root, id);
    const std::array<std::uint32_t, 4> values = {translucent ? 0U : 0x4080c0U, 0, true, colormap};
    xcb_create_window(m_connection, translucent ? 32 : m_screen->root_depth, m_socket, m_screen->root,
                      static_cast<std::int16_t>(place.x()), static_cast<std::int16_t>(place.y()), side, side, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, id,
                      XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_COLORMAP,
                      values.data());
    xcb_map_window(m_connection, m_socket);
    if (translucent) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_owner, XConnection::atom("_NET_SYSTEM_TRAY_VISUAL"),
                            XCB_ATOM_VISUALID, 32, 1, &id);
    }
    xcb_set_selection_owner(m_connection, m_owner, XConnection::atom(XConnection::traySelection()), XCB_CURRENT_TIME);
    // Other connections are to find it from now on: the server has done all this when it answers.
    const XcbReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(m_connection, xcb_get_input_focus(m_connection), nullptr));
}

FakeTray::~FakeTray()
{
    xcb_disconnect(m_connection);
}

void FakeTray::serve()
{
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(m_connection)}) {
        const auto *message = reinterpret_cast<const xcb_client_message_event_t *>(event.get());
        if (XConnection::eventType(*event) == XCB_CLIENT_MESSAGE && message->type == XConnection::atom("_XEMBED")) {
            m_words.push_back(message->data.data32[1]);
            continue;
        }
        if (XConnection::eventType(*event) != XCB_CLIENT_MESSAGE ||
            message->type != XConnection::atom("_NET_SYSTEM_TRAY_OPCODE") || message->data.data32[1] != 0) {
            continue;
        }
        const xcb_window_t icon = message->data.data32[2];
        const std::array<std::uint32_t, 2> size = {side, side};
        xcb_change_save_set(m_connection, XCB_SET_MODE_INSERT, icon);
        xcb_reparent_window(m_connection, icon, m_socket, 0, 0);
        xcb_configure_window(m_connection, icon, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size.data());
        xcb_map_window(m_connection, icon);
        xcb_flush(m_connection);
        m_icons.push_back(icon);
    }
}

void FakeTray::tell(xcb_window_t icon, Word word)
{
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = icon;
    message.type = XConnection::atom("_XEMBED");
    message.data.data32[1] = static_cast<std::uint32_t>(word);
    xcb_send_event(m_connection, false, icon, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&message));
    xcb_flush(m_connection);
}

void FakeTray::passKey(xcb_window_t icon, std::uint8_t key, std::uint16_t modifiers)
{
    xcb_key_press_event_t press = {};
    press.response_type = XCB_KEY_PRESS;
    press.detail = key;
    press.state = modifiers;
    press.root = m_screen->root;
    press.event = icon;
    press.same_screen = true;
    xcb_send_event(m_connection, false, icon, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&press));
    xcb_flush(m_connection);
}

void FakeTray::passRelease(xcb_window_t icon, std::uint8_t key)
{
    xcb_key_press_event_t event = {};
    event.detail = key;
    event.time = 1000;
    event.root = m_screen->root;
    event.event = icon;
    event.same_screen = true;
    for (const std::uint8_t type : {XCB_KEY_PRESS, XCB_KEY_RELEASE}) {
        event.response_type = type;
        xcb_send_event(m_connection, false, icon, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&event));
    }
    xcb_flush(m_connection);
}

void FakeTray::passPress(xcb_window_t icon, QPoint place)
{
    xcb_button_press_event_t press = {};
    press.response_type = XCB_BUTTON_PRESS;
    press.detail = XCB_BUTTON_INDEX_1;
    press.root = m_screen->root;
    press.root_x = static_cast<std::int16_t>(place.x());
    press.root_y = static_cast<std::int16_t>(place.y());
    press.event = icon;
    press.same_screen = true;
    xcb_send_event(m_connection, false, icon, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&press));
    xcb_flush(m_connection);
}

void FakeTray::putOut()
{
    for (const xcb_window_t icon : m_icons) {
        xcb_unmap_window(m_connection, icon);
        xcb_reparent_window(m_connection, icon, m_screen->root, 0, 0);
    }
    m_icons.clear();
    xcb_flush(m_connection);
}

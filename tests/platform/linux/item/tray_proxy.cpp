#include <xcb/xcb.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

// A tray under the name of a program that hands X windows on to StatusNotifierItem hosts. It takes none in, and says
// "asked" for each that wants to.

int main()
{
    xcb_connection_t *x = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(x) != 0) {
        return EXIT_FAILURE;
    }
    const xcb_screen_t *screen = xcb_setup_roots_iterator(xcb_get_setup(x)).data;
    const xcb_window_t owner = xcb_generate_id(x);
    xcb_create_window(x, XCB_COPY_FROM_PARENT, owner, screen->root, -10, -10, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    constexpr char selection[] = "_NET_SYSTEM_TRAY_S0";
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> atom(
        xcb_intern_atom_reply(x, xcb_intern_atom(x, 0, std::strlen(selection), selection), nullptr), &std::free);
    xcb_set_selection_owner(x, owner, atom->atom, XCB_CURRENT_TIME);
    xcb_flush(x);
    while (xcb_generic_event_t *event = xcb_wait_for_event(x)) {
        constexpr std::uint8_t sentBit = 0x80;
        if ((event->response_type & ~sentBit) == XCB_CLIENT_MESSAGE) {
            std::puts("asked");
            std::fflush(stdout);
        }
        std::free(event);
    }
    xcb_disconnect(x);
    return EXIT_SUCCESS;
}

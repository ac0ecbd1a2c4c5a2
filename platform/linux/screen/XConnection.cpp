#include "platform/linux/include/XConnection.h"

#include <QByteArrayList>
#include <QGuiApplication>
#include <QHash>

#include <xcb/res.h>
#include <xcb/xinput.h>

#include <vector>

namespace XConnection
{

namespace
{
QNativeInterface::QX11Application *x11Application()
{
    // Not qGuiApp, which takes any application object for one with windows.
    const auto *application = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    return application ? application->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
}

using Atoms = QHash<QByteArray, xcb_atom_t>;

/// Makes these atoms known, in one wait for the server.
void internAll(xcb_connection_t *x, const QByteArrayList &names, Atoms &known)
{
    std::vector<xcb_intern_atom_cookie_t> cookies;
    for (const QByteArray &name : names) {
        cookies.push_back(xcb_intern_atom(x, false, static_cast<std::uint16_t>(name.size()), name.constData()));
    }
    for (std::size_t i = 0; i < cookies.size(); ++i) {
        const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x, cookies[i], nullptr));
        if (reply) {
            known.insert(names[static_cast<qsizetype>(i)], reply->atom);
        }
    }
}

/// What every start asks for before its item is docked. Asked for one by one, each would wait for the server and for
/// the thread in which Qt reads its answers.
QByteArrayList atomsOfAStart()
{
    return {traySelection(),
            "_NET_SYSTEM_TRAY_OPCODE",
            "_NET_SYSTEM_TRAY_VISUAL",
            "_NET_WM_NAME",
            "_XEMBED",
            "_XEMBED_INFO",
            "UTF8_STRING"};
}
} // namespace

xcb_connection_t *get()
{
    QNativeInterface::QX11Application *x11 = x11Application();
    return x11 ? x11->connection() : nullptr;
}

int screenNumber()
{
    // DISPLAY is "host:display.screen"; Qt opens the screen that it names.
    char *host = nullptr;
    int display = 0;
    int screen = 0;
    if (xcb_parse_display(nullptr, &host, &display, &screen)) {
        std::free(host);
    }
    return screen;
}

xcb_screen_t *screen()
{
    xcb_connection_t *connection = get();
    if (!connection) {
        return nullptr;
    }
    xcb_screen_iterator_t it = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (int i = screenNumber(); i > 0 && it.rem > 1; --i) {
        xcb_screen_next(&it);
    }
    return it.data;
}

xcb_atom_t atom(const QByteArray &name)
{
    static Atoms known;
    if (const auto it = known.constFind(name); it != known.cend()) {
        return *it;
    }
    xcb_connection_t *connection = get();
    if (!connection) {
        return XCB_ATOM_NONE;
    }
    QByteArrayList wanted{name};
    if (known.isEmpty()) {
        wanted += atomsOfAStart();
        // Asked about soon; the answers come along.
        xcb_prefetch_extension_data(connection, &xcb_input_id);
        xcb_prefetch_extension_data(connection, &xcb_res_id);
    }
    internAll(connection, wanted, known);
    return known.value(name, XCB_ATOM_NONE);
}

xcb_window_t selectionOwner(const QByteArray &selection)
{
    xcb_connection_t *connection = get();
    if (!connection) {
        return XCB_NONE;
    }
    const auto cookie = xcb_get_selection_owner(connection, atom(selection));
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(connection, cookie, nullptr));
    return reply ? reply->owner : XCB_NONE;
}

const xcb_query_extension_reply_t *extension(xcb_connection_t *connection, xcb_extension_t &id)
{
    const xcb_query_extension_reply_t *found = xcb_get_extension_data(connection, &id);
    return found && found->present ? found : nullptr;
}

QByteArray traySelection()
{
    return "_NET_SYSTEM_TRAY_S" + QByteArray::number(screenNumber());
}

bool hearOfRoot(std::uint32_t events, bool heard)
{
    xcb_connection_t *x = get();
    const xcb_window_t root = screen()->root;
    const auto cookie = xcb_get_window_attributes(x, root);
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(x, cookie, nullptr));
    if (!attributes) {
        return false;
    }
    const std::uint32_t mask = (attributes->your_event_mask & ~events) | (heard ? events : 0U);
    if (mask == attributes->your_event_mask) {
        return false;
    }
    xcb_change_window_attributes(x, root, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(x);
    return true;
}

} // namespace XConnection

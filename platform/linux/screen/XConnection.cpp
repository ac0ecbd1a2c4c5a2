#include "platform/linux/include/XConnection.h"

#include <QGuiApplication>
#include <QHash>

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
    static QHash<QByteArray, xcb_atom_t> known;
    if (const auto it = known.constFind(name); it != known.cend()) {
        return *it;
    }
    xcb_connection_t *connection = get();
    if (!connection) {
        return XCB_ATOM_NONE;
    }
    const auto cookie = xcb_intern_atom(connection, false, static_cast<std::uint16_t>(name.size()), name.constData());
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection, cookie, nullptr));
    if (!reply) {
        return XCB_ATOM_NONE;
    }
    return *known.insert(name, reply->atom);
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

QByteArray traySelection()
{
    return "_NET_SYSTEM_TRAY_S" + QByteArray::number(screenNumber());
}

} // namespace XConnection

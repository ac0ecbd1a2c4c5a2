#include "platform/SessionLock.h"

#include "platform/ProductTexts.h"
#include "platform/linux/include/XConnection.h"

/// The lock is the X selection _KIVMENUA_S<screen>: one for each display, whoever's sessions share a bus or a home
/// folder, and released by the server when its owner's connection ends.
class SessionLock::Private
{
public:
    xcb_window_t owner = XCB_NONE;
};

SessionLock::SessionLock()
    : d(std::make_unique<Private>())
{
}

SessionLock::~SessionLock()
{
    if (xcb_connection_t *connection = XConnection::get(); connection && d->owner != XCB_NONE) {
        xcb_destroy_window(connection, d->owner);
        xcb_flush(connection);
    }
}

bool SessionLock::tryAcquire()
{
    xcb_connection_t *connection = XConnection::get();
    if (!connection) {
        return true;
    }
    const QByteArray selection = ProductTexts::lockSelection + QByteArray::number(XConnection::screenNumber());
    const xcb_atom_t atom = XConnection::atom(selection);

    // Two copies that start at once must not both find the selection free.
    xcb_grab_server(connection);
    const bool free = XConnection::selectionOwner(selection) == XCB_NONE;
    if (free) {
        d->owner = xcb_generate_id(connection);
        xcb_create_window(connection, XCB_COPY_FROM_PARENT, d->owner, XConnection::screen()->root, -1, -1, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        xcb_set_selection_owner(connection, d->owner, atom, XCB_CURRENT_TIME);
    }
    xcb_ungrab_server(connection);
    xcb_flush(connection);
    return free;
}

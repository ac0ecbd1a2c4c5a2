#include "platform/processes/SessionLock.h"

#include "platform/LogCategories.h"
#include "platform/ProductTexts.h"
#include "platform/linux/include/HiddenWindow.h"
#include "platform/linux/include/XConnection.h"

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>

#include <xcb/xfixes.h>

#include <optional>

namespace
{

QByteArray lockName()
{
    return ProductTexts::lockSelection + QByteArray::number(XConnection::screenNumber());
}

} // namespace

/// The lock is the X selection _KIVMENUA_S<screen>: one for each display, whoever's sessions share a bus or a home
/// folder, and released by the server when its owner's connection ends.
///
/// Any other program can take it away, or destroy its owner. It is then taken back as soon as nobody has it, or the
/// next start would be a second copy.
class SessionLock::Private final : private QAbstractNativeEventFilter
{
public:
    bool take();

private:
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    void watchSelection();

    std::optional<HiddenWindow> m_owner;
    std::uint8_t m_selectionNotify = 0; ///< The event's number on this server, once the lock is held.
};

bool SessionLock::Private::take()
{
    xcb_connection_t *connection = XConnection::get();
    const xcb_atom_t atom = XConnection::atom(lockName());

    // Two copies that start at once must not both find the selection free.
    xcb_grab_server(connection);
    const bool free = XConnection::selectionOwner(lockName()) == XCB_NONE;
    if (free) {
        if (!m_owner) {
            watchSelection();
        }
        xcb_set_selection_owner(connection, m_owner->id(), atom, XCB_CURRENT_TIME);
    }
    xcb_ungrab_server(connection);
    xcb_flush(connection);
    return free;
}

void SessionLock::Private::watchSelection()
{
    xcb_connection_t *connection = XConnection::get();
    if (!m_owner) {
        m_owner.emplace([this] {
            watchSelection();
            static_cast<void>(take());
        });
        // Qt uses the extension too, and has told the server so.
        if (const auto *xfixes = XConnection::extension(connection, xcb_xfixes_id)) {
            m_selectionNotify = xfixes->first_event + XCB_XFIXES_SELECTION_NOTIFY;
        }
        QCoreApplication::instance()->installNativeEventFilter(this);
    }
    xcb_xfixes_select_selection_input(connection, m_owner->id(), XConnection::atom(lockName()),
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
}

bool SessionLock::Private::nativeEventFilter(const QByteArray &, void *message, qintptr *)
{
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if (XConnection::eventType(*event) == m_selectionNotify) {
        const auto *notify = reinterpret_cast<const xcb_xfixes_selection_notify_event_t *>(event);
        if (notify->window == m_owner->id() && notify->owner != m_owner->id()) {
            qCDebug(agentLog, notify->owner == XCB_NONE ? "the display's lock was let go: it is taken back"
                                                        : "another program has taken the display's lock");
            static_cast<void>(take());
        }
    }
    return false;
}

SessionLock::SessionLock()
    : d(std::make_unique<Private>())
{
}

SessionLock::~SessionLock() = default;

bool SessionLock::tryAcquire()
{
    return !XConnection::get() || d->take();
}

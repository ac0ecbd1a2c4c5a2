#pragma once

#include <QByteArray>

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>

/// A reply, error or event of xcb, which are all released by free().
struct XcbFree {
    void operator()(void *block) const noexcept { std::free(block); }
};
template <typename T>
using XcbReply = std::unique_ptr<T, XcbFree>;

/// The X connection that Qt has open (owned by Qt), and the few questions everybody asks on it. Null and nothing when
/// the program runs without X, as unit tests do. Main thread only.
namespace XConnection
{

[[nodiscard]] xcb_connection_t *get();
[[nodiscard]] int screenNumber();
[[nodiscard]] xcb_screen_t *screen();
/// The atom of that name, made if need be. Cached.
[[nodiscard]] xcb_atom_t atom(const QByteArray &name);
/// The owner of a selection; XCB_NONE when there is none.
[[nodiscard]] xcb_window_t selectionOwner(const QByteArray &selection);
/// "_NET_SYSTEM_TRAY_S" and the screen's number: the selection whose owner is the tray.
[[nodiscard]] QByteArray traySelection();

/// What the server says of an extension. Null when it lacks that, or when the connection has ended.
[[nodiscard]] const xcb_query_extension_reply_t *extension(xcb_connection_t *connection, xcb_extension_t &id);

/// Has the server tell this program of these events of the root window (XCB_EVENT_MASK_...), or no longer. Of the
/// others it tells as before: they are what Qt and the rest of this program have asked for. Whether that is a change.
bool hearOfRoot(std::uint32_t events, bool heard);

/// Set in the type of an event that a client has sent, which the server passes on.
inline constexpr std::uint8_t sentBit = 0x80;

/// The type of an event, whoever it comes from.
[[nodiscard]] inline int eventType(const xcb_generic_event_t &event)
{
    return event.response_type & ~sentBit;
}

} // namespace XConnection

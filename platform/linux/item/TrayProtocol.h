#pragma once

#include "platform/linux/screen/XVisual.h"

#include <QSize>

#include <optional>

/// What is said to a tray by the freedesktop.org System Tray protocol, and to whoever embeds a window by XEmbed. Needs
/// X; main thread only.
namespace TrayProtocol
{

/// The visual that the tray asks its icons to have; the root window's where it asks for none. Nothing when it is one
/// that cannot be painted.
[[nodiscard]] std::optional<XVisual> visualOf(xcb_window_t tray);

/// Asks the tray to embed `window` and show it, no smaller than `size` (device pixels). A tray that does so gives the
/// window another parent; there is no other answer.
void requestDock(xcb_window_t tray, xcb_window_t window, QSize size);

/// Whether a message of the embedder gives the keyboard to the embedded window or takes it away; nothing for any other
/// message.
[[nodiscard]] std::optional<bool> focusTold(const xcb_client_message_event_t &message);

enum class FocusTo { Next, Previous };

/// Has the embedder give the keyboard to what is beside the embedded window.
void passFocus(xcb_window_t embedder, FocusTo to);

} // namespace TrayProtocol

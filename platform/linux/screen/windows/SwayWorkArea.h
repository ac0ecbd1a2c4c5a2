#pragma once

#include <QByteArray>
#include <QRect>

#include <optional>

/// The work area where sway is the window manager, which tells X programs nothing of its bars and publishes no
/// _NET_WORKAREA. Sway itself says what they leave, to whoever asks it as sway-ipc(7) describes. What X calls a pixel
/// is one of sway's there.
namespace SwayWorkArea
{

/// Of sway's answer to GET_WORKSPACES, the place of the workspace that is seen on `monitor`; nothing where it does not
/// say, or is no such answer.
[[nodiscard]] std::optional<QRect> workAreaOf(const QByteArray &workspaces, const QRect &monitor);

/// Asks the sway whose socket it is; nothing when it has not answered after 100 ms.
[[nodiscard]] std::optional<QByteArray> askForWorkspaces(const QByteArray &socket);

/// Asks the sway of this display, if the window manager is one; waits for it, at most as long. Needs X; main thread
/// only.
[[nodiscard]] std::optional<QRect> workAreaOn(const QRect &monitor);

} // namespace SwayWorkArea

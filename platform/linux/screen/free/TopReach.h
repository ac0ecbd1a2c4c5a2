#pragma once

#include <QRect>

#include <optional>
#include <span>

/// How far what lies along the top edge of `monitor` reaches into it, for a window that goes from `column`'s left side
/// to its right one: the bottom of the lowest of these. All in device pixels; 0 for nothing.
///  - the panels that a window manager keeps windows clear of, which are above its `workArea`: as far as a quarter of
///    the monitor, beyond which it is no panel of this monitor's;
///  - without a work area, of the top-level windows `windows` those that are panels at the top;
///  - `item`, the status item where it stands by itself, if it is in that column.
[[nodiscard]] int topReach(const QRect &monitor, const QRect &column, const std::optional<QRect> &workArea,
                           std::span<const QRect> windows, const std::optional<QRect> &item);

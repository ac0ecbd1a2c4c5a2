#pragma once

#include <QPoint>
#include <QRect>

#include <cstdint>
#include <optional>

/// Where a status item stands that stands by itself, and what a press of the primary button on it becomes. All in
/// device pixels.

/// How far the item's right edge is from that of the work area until the user moves it. A maximised window has its
/// buttons at an end of its title: at the right end three wide ones take up to 138 points, five usual ones 160. So the
/// item covers none of them there, nor those at the left end.
[[nodiscard]] int usualStripDistance(double ratio);

/// The same for where the user has put it, as it is kept: so far when a point was `keptRatio` pixels, as keptRatio()
/// writes it, and `ratio` pixels now. Nothing when no screen can have been like that.
[[nodiscard]] std::optional<int> keptStripDistance(std::uint32_t distance, std::uint32_t keptRatio, double ratio);
/// With 16 binary places.
[[nodiscard]] std::uint32_t keptRatio(double ratio);

/// The item's square of that side: along the top edge of the work area `area`, its right edge `distance` from that of
/// the area. All of it lies in the area, so far as the area is large enough.
[[nodiscard]] QRect stripPlace(const QRect &area, int side, int distance);

/// What a press has become. It is a click until the mouse has gone the distance of a drag, along the edge or away from
/// it.
enum class StripPress {
    Undecided, ///< A release would be a click.
    Drag,      ///< Along the edge: the item follows the mouse.
    Open       ///< Away from the edge, towards the menu that a click opens: it opens, to be chosen from by the release.
};

/// After the mouse has gone so far from where the press was.
[[nodiscard]] StripPress stripPress(QPoint moved, int dragDistance);

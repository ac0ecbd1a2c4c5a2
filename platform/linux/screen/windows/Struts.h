#pragma once

#include <QRect>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

/// What one window, a panel, keeps free of others along the edges of the X screen: its property _NET_WM_STRUT_PARTIAL,
/// or the older _NET_WM_STRUT (Extended Window Manager Hints). In device pixels of the root window.
struct Strut {
    struct Side {
        int depth = 0; ///< Counted from the edge of the whole X screen, be there another monitor between or not.
        int begin = 0; ///< Along that edge.
        int end = 0;   ///< The last pixel.
    };
    Side left;
    Side right;
    Side top;
    Side bottom;
};

/// Reads either property: twelve numbers, or four. Nothing for any other count, and for numbers that no X screen has.
[[nodiscard]] std::optional<Strut> strutOf(std::span<const std::uint32_t> numbers);

/// The work area for windows on `monitor`. The one that the window manager publishes, `workArea`, is one rectangle for
/// all monitors of `screen`, and a panel takes its part of all of them. Where struts tell whose an edge of it is, only
/// those count at that edge that reach into this monitor, and no farther than to its middle. An edge that no strut
/// tells of is the window manager's own, and stays.
[[nodiscard]] QRect workAreaByStruts(const QRect &monitor, const QSize &screen, const QRect &workArea,
                                     std::span<const Strut> struts);

/// The struts of the windows that the window manager has in its care (_NET_CLIENT_LIST), of 200 at the most. Needs X;
/// main thread only.
[[nodiscard]] std::vector<Strut> strutsOfWindows();

#pragma once

#include <QRect>

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <span>

/// The part of the screen that panels and shells leave to windows, as the window manager publishes it: the properties
/// _NET_WORKAREA and _NET_CURRENT_DESKTOP of the root window (Extended Window Manager Hints), and for each monitor
/// _GTK_WORKAREAS_D and the desktop's number, where it does that too (GTK's own hint); what SwayWorkArea.h says where
/// it does neither. In device pixels.

/// Of `areas`, x, y, width and height for each desktop, the one of that desktop, or of the first for window managers
/// that publish one for all; nothing when there is none.
[[nodiscard]] std::optional<QRect> workAreaOf(std::span<const std::uint32_t> areas, std::uint32_t desktop);

/// Of `areas`, x, y, width and height for each monitor, the one that lies on that monitor; nothing when there is none.
[[nodiscard]] std::optional<QRect> workAreaOfMonitor(std::span<const std::uint32_t> areas, const QRect &monitor);

/// What of `monitor` lies in the work area. All of it where that is not known, or leaves less than half of the
/// monitor's width or height: the area may be one rectangle for all monitors, of which a panel between two of them
/// takes all of one away.
[[nodiscard]] QRect workAreaOn(const QRect &monitor, const std::optional<QRect> &workArea);

/// The question for the work area. The constructor sends it to the X server, and answer() waits, so that the round trip
/// goes on while something else is done. Needs X; main thread only.
class WorkAreaQuestion final
{
public:
    WorkAreaQuestion();
    ~WorkAreaQuestion();
    WorkAreaQuestion(const WorkAreaQuestion &) = delete;
    WorkAreaQuestion &operator=(const WorkAreaQuestion &) = delete;

    /// The work area of the current desktop for windows on `monitor`; nothing when no window manager publishes one.
    /// Where one is published for all monitors together, and there are others, the struts of the panels are asked for.
    /// To be called once.
    [[nodiscard]] std::optional<QRect> answer(const QRect &monitor);

private:
    xcb_get_property_cookie_t m_areas;
    xcb_get_property_cookie_t m_desktop;
    xcb_get_property_cookie_t m_areasOfMonitors; ///< Of the first desktop, which for most is the only one.
    xcb_get_geometry_cookie_t m_screen;
    bool m_isAsked = true;
};

#pragma once

#include <QRect>

#include <xcb/randr.h>

#include <optional>
#include <span>
#include <vector>

/// The question where the monitors are. The constructor asks the X server, and answer() waits, so that the round trip
/// goes on while something else is asked. Needs X; main thread only.
class MonitorsQuestion final
{
public:
    MonitorsQuestion();
    ~MonitorsQuestion();
    MonitorsQuestion(const MonitorsQuestion &) = delete;
    MonitorsQuestion &operator=(const MonitorsQuestion &) = delete;

    /// In device pixels of the root window; none where the X server tells none, as one without RandR. To be called
    /// once.
    [[nodiscard]] std::vector<QRect> answer();

private:
    std::optional<xcb_randr_get_monitors_cookie_t> m_question; ///< Nothing without RandR, and once answered.
};

/// Whether a part of `rect` at least lies on one of `monitors`. True while none is known.
[[nodiscard]] bool isOnAMonitor(const QRect &rect, std::span<const QRect> monitors);

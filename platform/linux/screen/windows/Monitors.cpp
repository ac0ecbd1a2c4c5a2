#include "platform/linux/screen/windows/Monitors.h"

#include "platform/linux/include/XConnection.h"

#include <algorithm>
#include <utility>

MonitorsQuestion::MonitorsQuestion()
{
    xcb_connection_t *x = XConnection::get();
    if (XConnection::extension(x, xcb_randr_id)) {
        m_question = xcb_randr_get_monitors(x, XConnection::screen()->root, true);
    }
}

MonitorsQuestion::~MonitorsQuestion()
{
    if (m_question) {
        xcb_discard_reply(XConnection::get(), m_question->sequence);
    }
}

std::vector<QRect> MonitorsQuestion::answer()
{
    std::vector<QRect> monitors;
    const auto question = std::exchange(m_question, std::nullopt);
    const XcbReply<xcb_randr_get_monitors_reply_t> reply(
        question ? xcb_randr_get_monitors_reply(XConnection::get(), *question, nullptr) : nullptr);
    if (reply) {
        for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
             xcb_randr_monitor_info_next(&it)) {
            monitors.emplace_back(it.data->x, it.data->y, it.data->width, it.data->height);
        }
    }
    return monitors;
}

bool isOnAMonitor(const QRect &rect, std::span<const QRect> monitors)
{
    return monitors.empty() ||
           std::ranges::any_of(monitors, [&](const QRect &monitor) { return monitor.intersects(rect); });
}

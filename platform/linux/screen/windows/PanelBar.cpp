#include "platform/linux/screen/windows/PanelBar.h"

#include <algorithm>

namespace
{

using Edge = StatusBar::Edge;

/// No panel takes more than a quarter of the screen; windows that stand at its edge do.
bool isThin(int thickness, int length, int ofMonitor)
{
    return thickness > 0 && thickness < length && thickness * 4 <= ofMonitor;
}

/// How far `rect` reaches into `monitor` from that edge.
int reach(const QRect &rect, const QRect &monitor, Edge edge)
{
    switch (edge) {
    case Edge::Top:
        return rect.bottom() - monitor.top() + 1;
    case Edge::Bottom:
        return monitor.bottom() - rect.top() + 1;
    case Edge::Left:
        return rect.right() - monitor.left() + 1;
    case Edge::Right:
        return monitor.right() - rect.left() + 1;
    }
    return 0;
}

StatusBar nearer(Edge one, Edge other, const QRect &rect, const QRect &monitor, double ratio)
{
    const Edge edge = reach(rect, monitor, one) <= reach(rect, monitor, other) ? one : other;
    return {.edge = edge, .thickness = static_cast<float>(reach(rect, monitor, edge) / ratio)};
}

bool liesAlong(const QRect &window, const QRect &monitor)
{
    return isThin(window.height(), window.width(), monitor.height());
}

bool standsUpright(const QRect &window, const QRect &monitor)
{
    return isThin(window.width(), window.height(), monitor.width());
}

/// What the work area leaves of the monitor at that edge; empty where that is nothing.
QRect leftOver(const QRect &workArea, const QRect &monitor, Edge edge)
{
    QRect rest = monitor;
    switch (edge) {
    case Edge::Top:
        rest.setBottom(workArea.top() - 1);
        break;
    case Edge::Bottom:
        rest.setTop(workArea.bottom() + 1);
        break;
    case Edge::Left:
        rest.setRight(workArea.left() - 1);
        break;
    case Edge::Right:
        rest.setLeft(workArea.right() + 1);
        break;
    }
    return rest;
}

std::optional<StatusBar> barBesideWorkArea(const QRect &workArea, QPoint point, const QRect &monitor, double ratio)
{
    for (const Edge edge : {Edge::Top, Edge::Bottom, Edge::Left, Edge::Right}) {
        const QRect rest = leftOver(workArea, monitor, edge);
        const bool isUpright = edge == Edge::Left || edge == Edge::Right;
        if (rest.contains(point) && (isUpright ? standsUpright(rest, monitor) : liesAlong(rest, monitor))) {
            return StatusBar{.edge = edge, .thickness = static_cast<float>(reach(rest, monitor, edge) / ratio)};
        }
    }
    return std::nullopt;
}

} // namespace

bool isPanel(const QRect &window, const QRect &monitor)
{
    return liesAlong(window, monitor) || standsUpright(window, monitor);
}

StatusBar panelBar(const QRect &window, const QRect &item, const QRect &monitor, const std::optional<QRect> &workArea,
                   double ratio)
{
    if (liesAlong(window, monitor)) {
        return nearer(Edge::Top, Edge::Bottom, window, monitor, ratio);
    }
    if (standsUpright(window, monitor)) {
        return nearer(Edge::Left, Edge::Right, window, monitor, ratio);
    }
    if (workArea) {
        const QPoint point = item.isEmpty() ? item.topLeft() : item.center();
        if (const std::optional<StatusBar> bar = barBesideWorkArea(*workArea, point, monitor, ratio)) {
            return *bar;
        }
    }
    StatusBar assumed;
    if (!item.isEmpty() && !monitor.isEmpty()) {
        const float thickness = assumed.thickness;
        assumed = nearer(Edge::Top, Edge::Bottom, item, monitor, ratio);
        assumed.thickness = std::max(assumed.thickness, thickness);
    }
    return assumed;
}

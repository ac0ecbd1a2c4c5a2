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

} // namespace

StatusBar panelBar(const QRect &window, const QRect &item, const QRect &monitor, double ratio)
{
    if (isThin(window.height(), window.width(), monitor.height())) {
        return nearer(Edge::Top, Edge::Bottom, window, monitor, ratio);
    }
    if (isThin(window.width(), window.height(), monitor.width())) {
        return nearer(Edge::Left, Edge::Right, window, monitor, ratio);
    }
    StatusBar assumed;
    if (!item.isEmpty() && !monitor.isEmpty()) {
        const float thickness = assumed.thickness;
        assumed = nearer(Edge::Top, Edge::Bottom, item, monitor, ratio);
        assumed.thickness = std::max(assumed.thickness, thickness);
    }
    return assumed;
}

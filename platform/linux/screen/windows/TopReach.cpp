#include "platform/linux/screen/windows/TopReach.h"

#include "platform/linux/screen/windows/PanelBar.h"

#include <algorithm>

namespace
{

/// The number of pixels from the monitor's top edge to the rectangle's bottom one.
int bottomOf(const QRect &rect, const QRect &monitor)
{
    return rect.y() + rect.height() - monitor.y();
}

bool isPanelAtTheTop(const QRect &window, const QRect &monitor)
{
    const bool isThin = window.height() < window.width() && window.height() * 4 <= monitor.height();
    return isThin && panelBar(window, {}, monitor, {}, 1).edge == StatusBar::Edge::Top;
}

} // namespace

int topReach(const QRect &monitor, const QRect &column, const std::optional<QRect> &workArea,
             std::span<const QRect> windows, const std::optional<QRect> &item)
{
    int reach = 0;
    if (workArea) {
        const int above = workArea->y() - monitor.y();
        reach = above * 4 <= monitor.height() ? std::max(above, 0) : 0;
    } else {
        for (const QRect &window : windows) {
            reach = isPanelAtTheTop(window, monitor) ? std::max(reach, bottomOf(window, monitor)) : reach;
        }
    }
    if (item && item->left() <= column.right() && item->right() >= column.left()) {
        reach = std::max(reach, bottomOf(*item, monitor));
    }
    return reach;
}

#pragma once

#include "tests/session/support/Desktop.h"

#include <QRect>

#include <gtest/gtest.h>

inline constexpr int gapBelowThePanel = 5;

/// Expects the menu at the item, the gap away from the panel along that edge. At another scale than 1 its corner and
/// its size are each rounded to points, which are larger than pixels.
inline void expectMenuOffPanel(const QRect &menu, const QRect &item, const QRect &panel, Desktop::PanelEdge edge,
                               double scale = 1)
{
    const auto expectAt = [scale](QPoint corner, QPoint expected) {
        const double mostOff = scale == 1 ? 0 : 1 + scale;
        EXPECT_NEAR(corner.x(), expected.x(), mostOff);
        EXPECT_NEAR(corner.y(), expected.y(), mostOff);
    };
    const int gap = qRound(gapBelowThePanel * scale);
    switch (edge) {
    case Desktop::PanelEdge::Top:
        expectAt(menu.topLeft(), {item.left(), panel.bottom() + 1 + gap});
        break;
    case Desktop::PanelEdge::Bottom:
        expectAt(menu.bottomLeft(), {item.left(), panel.top() - 1 - gap});
        break;
    case Desktop::PanelEdge::Left:
        expectAt(menu.topLeft(), {panel.right() + 1 + gap, item.top()});
        break;
    case Desktop::PanelEdge::Right:
        expectAt(menu.topRight(), {panel.left() - 1 - gap, item.top()});
        break;
    }
}

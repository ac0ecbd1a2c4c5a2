#pragma once

#include "tests/session/support/Desktop.h"

#include <QRect>

#include <gtest/gtest.h>

inline constexpr int gapBelowThePanel = 5;

/// Expects the menu at the item, the gap away from the panel along that edge.
inline void expectMenuOffPanel(const QRect &menu, const QRect &item, const QRect &panel, Desktop::PanelEdge edge)
{
    switch (edge) {
    case Desktop::PanelEdge::Top:
        EXPECT_EQ(menu.topLeft(), QPoint(item.left(), panel.bottom() + 1 + gapBelowThePanel));
        break;
    case Desktop::PanelEdge::Bottom:
        EXPECT_EQ(menu.bottomLeft(), QPoint(item.left(), panel.top() - 1 - gapBelowThePanel));
        break;
    case Desktop::PanelEdge::Left:
        EXPECT_EQ(menu.topLeft(), QPoint(panel.right() + 1 + gapBelowThePanel, item.top()));
        break;
    case Desktop::PanelEdge::Right:
        EXPECT_EQ(menu.topRight(), QPoint(panel.left() - 1 - gapBelowThePanel, item.top()));
        break;
    }
}

#pragma once

#include "tests/session/support/Agent.h"
#include "tests/session/support/Desktop.h"

#include <gtest/gtest.h>

#include <optional>

/// A desktop with window manager and panel, unless the test says otherwise, and an agent that is yet to be started in
/// it.
class DesktopWithAgent : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(desktop.start(server));
        if (hasWindowManager) {
            ASSERT_TRUE(desktop.startWindowManager());
        }
        if (panelThickness > 0) {
            ASSERT_TRUE(desktop.startPanel(Desktop::TraySide::Right, Desktop::PanelEdge::Top, 0, panelThickness));
        }
        agent.emplace(desktop);
    }

    Desktop::Server server = Desktop::Server::RemoteDesktop;
    bool hasWindowManager = true;
    int panelThickness = 30; ///< 0 for no panel.
    Desktop desktop;
    std::optional<Agent> agent; ///< Once the desktop is there.
};

#pragma once

#include "tests/session/support/Agent.h"
#include "tests/session/support/Desktop.h"

#include <gtest/gtest.h>

#include <optional>

/// A desktop with window manager and panel, and an agent that is yet to be started in it.
class DesktopWithAgent : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(desktop.start(server));
        ASSERT_TRUE(desktop.startWindowManager());
        ASSERT_TRUE(desktop.startPanel());
        agent.emplace(desktop);
    }

    Desktop::Server server = Desktop::Server::RemoteDesktop;
    Desktop desktop;
    std::optional<Agent> agent; ///< Once the desktop is there.
};

#include "shell/Application.h"

#include <gtest/gtest.h>

/// The agent's own application object, whose requests to quit the tests see.
int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    Application::setDesktopSettingsAware(false);
    Application application(argc, argv);
    Application::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}

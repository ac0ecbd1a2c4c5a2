#include "platform/GraphicalSession.h"

#include <gtest/gtest.h>

#include <csignal>

TEST(MacGraphicalSession, NeitherTakesTheKeyboardAtLoginNorLooksForLargerImages)
{
    const char *const switches[] = {"QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM",
                                    "QT_HIGHDPI_DISABLE_2X_IMAGE_LOADING"};
    for (const char *name : switches) {
        qunsetenv(name);
    }
    EXPECT_EQ(GraphicalSession::prepare(), QString());
    for (const char *name : switches) {
        EXPECT_EQ(qgetenv(name), "1") << name;
        qunsetenv(name);
    }
}

TEST(MacGraphicalSession, OutlivesTheReaderOfItsStandardError)
{
    std::signal(SIGPIPE, SIG_DFL);
    EXPECT_EQ(GraphicalSession::prepare(), QString());
    EXPECT_EQ(std::signal(SIGPIPE, SIG_DFL), SIG_IGN);
}

TEST(MacGraphicalSession, EndsWhenThatIsAskedFor)
{
    EXPECT_FALSE(GraphicalSession::isEnding());
    GraphicalSession::requestEnd();
    EXPECT_TRUE(GraphicalSession::isEnding());
}

#include "platform/linux/workarounds/bus/PortalQuestion.h"

#include <QByteArray>

#include <gtest/gtest.h>

namespace
{

constexpr char variable[] = "QT_NO_XDG_DESKTOP_PORTAL";

class PortalQuestionTest : public testing::Test
{
protected:
    PortalQuestionTest() { qunsetenv(variable); }
    ~PortalQuestionTest() override { qunsetenv(variable); }
};

} // namespace

TEST_F(PortalQuestionTest, IsAvoidedUntilProgramsMayAskIt)
{
    PortalQuestion::avoid();
    EXPECT_EQ(qgetenv(variable), "1");
    PortalQuestion::allow();
    EXPECT_FALSE(qEnvironmentVariableIsSet(variable));
}

TEST_F(PortalQuestionTest, IsTheUsersChoiceWhereThereIsOne)
{
    for (const char *choice : {"0", "1"}) {
        qputenv(variable, choice);
        PortalQuestion::avoid();
        EXPECT_EQ(qgetenv(variable), choice);
        PortalQuestion::allow();
        EXPECT_EQ(qgetenv(variable), choice);
    }
}

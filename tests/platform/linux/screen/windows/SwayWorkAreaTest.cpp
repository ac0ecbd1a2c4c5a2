#include "platform/linux/screen/windows/SwayWorkArea.h"

#include "tests/platform/linux/screen/windows/FakeSway.h"

#include <gtest/gtest.h>

namespace
{

const QByteArray workspaces = R"([
 {"name": "1", "visible": false, "rect": {"x": 0, "y": 0, "width": 1280, "height": 800}},
 {"name": "2", "visible": true, "rect": {"x": 0, "y": 40, "width": 1280, "height": 760}},
 {"name": "3", "visible": true, "rect": {"x": 1280, "y": 0, "width": 800, "height": 570}}])";

TEST(SwayWorkArea, IsTheWorkspaceThatIsSeenOnTheMonitor)
{
    EXPECT_EQ(SwayWorkArea::workAreaOf(workspaces, {0, 0, 1280, 800}), QRect(0, 40, 1280, 760));
    EXPECT_EQ(SwayWorkArea::workAreaOf(workspaces, {1280, 0, 800, 600}), QRect(1280, 0, 800, 570));
    EXPECT_EQ(SwayWorkArea::workAreaOf(workspaces, {2080, 0, 800, 600}), std::nullopt);
}

TEST(SwayWorkArea, IsNoneInWhatIsNoSuchAnswer)
{
    for (const char *const answer :
         {"", "{}", "[", "[7]", R"([{"visible": true}])", R"([{"visible": true, "rect": [0, 0, 1280, 800]}])",
          R"([{"visible": "true", "rect": {"x": 0, "y": 0, "width": 1280, "height": 800}}])",
          R"([{"visible": true, "rect": {"x": 0, "y": 0, "width": 0, "height": 800}}])",
          R"([{"visible": true, "rect": {"x": 0, "y": 0, "width": 1280, "height": 8000000000}}])"}) {
        EXPECT_EQ(SwayWorkArea::workAreaOf(answer, {0, 0, 1280, 800}), std::nullopt) << answer;
    }
}

TEST(SwayWorkArea, IsAskedOfSwaysSocket)
{
    FakeSway sway(FakeSway::message(workspaces));
    EXPECT_EQ(SwayWorkArea::askForWorkspaces(sway.path()), workspaces);
    EXPECT_EQ(sway.question(), FakeSway::message({}));
}

TEST(SwayWorkArea, IsNotWaitedForWhereSwayDoesNotAnswer)
{
    const QByteArray whole = FakeSway::message(workspaces);
    for (const QByteArray &answer :
         {QByteArray(), whole.chopped(1), whole.first(9), QByteArray(whole).replace("i3-ipc", "i4-ipc"),
          QByteArray("i3-ipc") + FakeSway::number(2) + FakeSway::number(7) + "[]",
          QByteArray("i3-ipc") + FakeSway::number(0xffffffff) + FakeSway::number(1) + "[]"}) {
        const FakeSway sway(answer);
        EXPECT_EQ(SwayWorkArea::askForWorkspaces(sway.path()), std::nullopt) << answer.constData();
    }
    EXPECT_EQ(SwayWorkArea::askForWorkspaces("/nowhere/at/all"), std::nullopt);
    EXPECT_EQ(SwayWorkArea::askForWorkspaces(QByteArray(200, 'x')), std::nullopt) << "no socket has such a name";
}

} // namespace

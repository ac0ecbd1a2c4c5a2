#include "notify/popup/PopUpLayout.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace
{

constexpr NSSize screen = {1280, 800};

/// As planned, before the text is known.
PopUpContents planned(NSSize contentSize, bool hasTitle)
{
    return {.contentSize = contentSize, .hasTitle = hasTitle, .isInstant = false, .textHeight = std::nullopt};
}

PopUpLayout grown(NSSize contentSize, bool hasTitle, float textHeight)
{
    PopUpContents contents = planned(contentSize, hasTitle);
    contents.textHeight = textHeight;
    return popUpLayout(contents);
}

TEST(PopUpLayout, PutsEverythingAroundTheText)
{
    const PopUpLayout layout = popUpLayout(planned({320, 100}, true));
    EXPECT_EQ(layout.window, (NSRect{{0, 0}, {403, 194}}));
    EXPECT_EQ(layout.text, (NSRect{{72, 52}, {320, 100}}));
    EXPECT_EQ(layout.title, (NSRect{{72, 163}, {320, 20}}));
    EXPECT_EQ(layout.icon, (NSRect{{11, 133}, {50, 50}}));
    EXPECT_EQ(layout.remindMeLater, (NSRect{{11, 11}, {185, 30}}));
    EXPECT_EQ(layout.dontRemindMe, (NSRect{{207, 11}, {185, 30}}));
    EXPECT_EQ(layout.closeButton, (NSRect{{166.5, 11}, {70, 30}}));
}

TEST(PopUpLayout, HasNoPlaceForATitleThatIsNotThere)
{
    const PopUpLayout layout = popUpLayout(planned({320, 100}, false));
    EXPECT_EQ(layout.window.size, (NSSize{403, 163}));
    EXPECT_EQ(layout.text, (NSRect{{72, 52}, {320, 100}}));
    EXPECT_EQ(layout.icon, (NSRect{{11, 102}, {50, 50}}));
}

TEST(PopUpLayout, LeavesRoomForTheIconBesideAShortText)
{
    EXPECT_EQ(popUpLayout(planned({320, 0}, true)).window.size.height, 124);
    EXPECT_EQ(popUpLayout(planned({320, 0}, false)).window.size.height, 113);
    EXPECT_EQ(popUpLayout(planned({320, 30}, true)).window.size.height, 124);
    EXPECT_EQ(popUpLayout(planned({320, 31}, true)).window.size.height, 125);
    EXPECT_EQ(popUpLayout(planned({320, 50}, false)).window.size.height, 113);
    EXPECT_EQ(popUpLayout(planned({320, 51}, false)).window.size.height, 114);
}

TEST(PopUpLayout, GrowsAndShrinksWithTheText)
{
    struct Row {
        float asked;
        float taken;
        float windowHeight;
        NSRect text;
        NSRect icon;
    };
    const Row rows[] = {
        {100, 100, 194, {{72, 52}, {320, 100}}, {{11, 133}, {50, 50}}},
        {100, 140, 234, {{72, 52}, {320, 140}}, {{11, 173}, {50, 50}}},
        {100, 60, 154, {{72, 52}, {320, 60}}, {{11, 93}, {50, 50}}},
        // Never less than 20.
        {100, 14, 114, {{72, 52}, {320, 20}}, {{11, 53}, {50, 50}}},
        // Planned for the icon, the text keeps its distance from the buttons.
        {0, 14, 144, {{72, 82}, {320, 20}}, {{11, 83}, {50, 50}}},
        {0, 70, 194, {{72, 82}, {320, 70}}, {{11, 133}, {50, 50}}},
    };
    for (const Row &row : rows) {
        const PopUpLayout layout = grown({320, row.asked}, true, row.taken);
        EXPECT_EQ(layout.window.size, (NSSize{403, row.windowHeight})) << row.asked << ", " << row.taken;
        EXPECT_EQ(layout.text, row.text) << row.asked << ", " << row.taken;
        EXPECT_EQ(layout.icon, row.icon) << row.asked << ", " << row.taken;
        EXPECT_EQ(layout.title, (NSRect{{72, row.windowHeight - 31}, {320, 20}})) << row.asked << ", " << row.taken;
        EXPECT_EQ(layout.remindMeLater, (NSRect{{11, 11}, {185, 30}}));
    }
}

TEST(PopUpLayout, SharesTheWidthBetweenTheTwoButtons)
{
    const PopUpLayout layout = popUpLayout(planned({251, 100}, true));
    EXPECT_EQ(layout.window.size.width, 334);
    EXPECT_EQ(layout.remindMeLater, (NSRect{{11, 11}, {150.5, 30}}));
    EXPECT_EQ(layout.dontRemindMe, (NSRect{{172.5, 11}, {150.5, 30}}));
    EXPECT_EQ(layout.closeButton, (NSRect{{132, 11}, {70, 30}}));
}

TEST(PopUpLayout, BoundsWhatAMessageAsksFor)
{
    constexpr float infinite = std::numeric_limits<float>::infinity();
    const float notANumber = std::nanf("");
    struct Row {
        NSSize asked;
        NSSize given;
    };
    const Row rows[] = {
        {{320, 100}, {320, 100}},
        {{1, 0.5}, {1, 0.5}},
        {{0, 100}, {320, 100}},
        {{-5, -5}, {320, 0}},
        {{notANumber, notANumber}, {320, 0}},
        {{infinite, infinite}, {1177, 20000}},
        {{-infinite, -infinite}, {320, 0}},
        {{1e9F, 1e9F}, {1177, 20000}},
    };
    for (const Row &row : rows) {
        EXPECT_EQ(boundedContentSize(row.asked, screen), row.given) << row.asked.width << " x " << row.asked.height;
    }
    EXPECT_EQ(popUpLayout(planned(boundedContentSize({1e9F, 0}, screen), true)).window.size.width, 1260);
    EXPECT_EQ(boundedContentSize({500, 0}, {200, 100}).width, 320) << "whatever the screen";
}

TEST(PopUpLayout, KeepsAPopUpOnTheScreen)
{
    for (const bool hasTitle : {true, false}) {
        for (const float asked : {0.F, 30.F, 100.F, 20000.F}) {
            for (const float reach : {0.F, 22.F, 48.F}) {
                const PopUpContents contents = planned({320, asked}, hasTitle);
                const PopUpLayout layout = grown({320, asked}, hasTitle, maxTextHeight(contents, screen, reach));
                EXPECT_EQ(layout.window.size.height, 790 - std::max(30.F, reach)) << asked;
            }
        }
    }
    EXPECT_EQ(maxTextHeight(planned({320, 0}, true), {320, 100}, 0), 50);
}

} // namespace

#include "notify/popup/keyboard/KeyboardTour.h"

#include <gtest/gtest.h>

namespace
{

TEST(KeyboardTour, GoesOnByTabAndTheArrowsAndBackByTheOthers)
{
    for (const int key : {Qt::Key_Tab, Qt::Key_Right, Qt::Key_Down}) {
        EXPECT_EQ(tourKey(key, Qt::NoModifier), TourKey::Next) << key;
    }
    for (const int key : {Qt::Key_Backtab, Qt::Key_Left, Qt::Key_Up}) {
        EXPECT_EQ(tourKey(key, Qt::NoModifier), TourKey::Previous) << key;
    }
    EXPECT_EQ(tourKey(Qt::Key_Tab, Qt::ShiftModifier), TourKey::Previous);
    EXPECT_EQ(tourKey(Qt::Key_Backtab, Qt::ShiftModifier), TourKey::Previous);
    EXPECT_EQ(tourKey(Qt::Key_Down, Qt::KeypadModifier), TourKey::Next);
}

TEST(KeyboardTour, PressesByReturnAndSpaceTurnsPagesAndEndsByEscape)
{
    for (const int key : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Space}) {
        EXPECT_EQ(tourKey(key, Qt::NoModifier), TourKey::Press) << key;
    }
    EXPECT_EQ(tourKey(Qt::Key_PageUp, Qt::NoModifier), TourKey::PageUp);
    EXPECT_EQ(tourKey(Qt::Key_PageDown, Qt::NoModifier), TourKey::PageDown);
    EXPECT_EQ(tourKey(Qt::Key_Escape, Qt::NoModifier), TourKey::GiveBack);
}

TEST(KeyboardTour, HasNoUseForLettersNorForShortcuts)
{
    for (const int key : {Qt::Key_A, Qt::Key_Shift, Qt::Key_Control, Qt::Key_F4}) {
        EXPECT_EQ(tourKey(key, Qt::NoModifier), TourKey::Nothing) << key;
    }
    for (const Qt::KeyboardModifier modifier : {Qt::ControlModifier, Qt::AltModifier, Qt::MetaModifier}) {
        EXPECT_EQ(tourKey(Qt::Key_Tab, modifier), TourKey::Nothing) << modifier;
        EXPECT_EQ(tourKey(Qt::Key_Return, modifier), TourKey::Nothing) << modifier;
    }
}

TEST(KeyboardTour, ComesRoundAtBothEnds)
{
    EXPECT_EQ(stopAfter(0, TourKey::Next, 3), 1);
    EXPECT_EQ(stopAfter(2, TourKey::Next, 3), 0);
    EXPECT_EQ(stopAfter(2, TourKey::Previous, 3), 1);
    EXPECT_EQ(stopAfter(0, TourKey::Previous, 3), 2);
    EXPECT_EQ(stopAfter(0, TourKey::Next, 1), 0);
    EXPECT_EQ(stopAfter(0, TourKey::Previous, 1), 0);
    for (const TourKey key :
         {TourKey::Nothing, TourKey::Press, TourKey::PageUp, TourKey::PageDown, TourKey::GiveBack}) {
        EXPECT_EQ(stopAfter(1, key, 3), 1);
    }
}

} // namespace

#include "notify/popup/ScreenChange.h"

namespace
{

/// The left and bottom edges belong to a rectangle, the right and top ones do not.
bool contains(const NSRect &rect, NSPoint point) noexcept
{
    return point.x >= rect.origin.x && point.x < rect.origin.x + rect.size.width && point.y >= rect.origin.y &&
           point.y < rect.origin.y + rect.size.height;
}

} // namespace

PopUpReaction reactionTo(const PopUpSituation &situation) noexcept
{
    if (situation.prevScreenSize != situation.screenSize) {
        return PopUpReaction::MoveThere;
    }
    const bool isOnMainScreen = situation.popUpScreen && contains(situation.mainScreen, situation.popUpScreen->origin);
    return isOnMainScreen && situation.wanted == situation.actual ? PopUpReaction::Nothing : PopUpReaction::Recreate;
}

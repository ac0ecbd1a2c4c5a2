#include "notify/popup/PopUpPlacement.h"

#include <algorithm>

float popUpTop(float reach) noexcept
{
    return std::max(popUpTopMargin, reach);
}

NSPoint popUpOrigin(NSSize mainScreen, NSSize popUp, float reach) noexcept
{
    return {mainScreen.width - popUp.width - popUpSideMargin, mainScreen.height - popUp.height - popUpTop(reach)};
}

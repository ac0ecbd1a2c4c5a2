#include "notify/popup/PopUpPlacement.h"

NSPoint popUpOrigin(NSSize mainScreen, NSSize popUp) noexcept
{
    return {mainScreen.width - popUp.width - popUpSideMargin, mainScreen.height - popUp.height - popUpTopMargin};
}

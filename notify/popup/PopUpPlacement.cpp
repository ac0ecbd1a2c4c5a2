#include "notify/popup/PopUpPlacement.h"

NSPoint popUpOrigin(NSSize mainScreen, NSSize popUp) noexcept
{
    constexpr float margin = 10;
    constexpr float panel = 20;
    return {mainScreen.width - popUp.width - margin, mainScreen.height - popUp.height - margin - panel};
}

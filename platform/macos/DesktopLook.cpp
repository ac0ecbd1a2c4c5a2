#include "platform/screen/DesktopLook.h"

void DesktopLook::follow(Part)
{
    // Qt asks the system itself.
}

#include "platform/screen/AvailableDisplayModes.h"

CFArrayRef availableDisplayModes(CGDirectDisplayID display)
{
    return CGDisplayAvailableModes(display);
}

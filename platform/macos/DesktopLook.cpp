#include "platform/screen/DesktopLook.h"

// On macOS Qt asks the system for all of it.

void DesktopLook::prepareScale() {}

void DesktopLook::follow(Part) {}

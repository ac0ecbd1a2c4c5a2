#include "tests/platform/macos/FakeNativeWindows.h"

#include "platform/macos/NativeWindows.h"

std::vector<std::string> &toldNativeWindows()
{
    static std::vector<std::string> told;
    return told;
}

double NativeWindows::statusBarThickness()
{
    return 24;
}

void NativeWindows::orderFront(WId)
{
    toldNativeWindows().emplace_back("front");
}

void NativeWindows::activate(WId)
{
    toldNativeWindows().emplace_back("activate");
}

void NativeWindows::setStatusLevel(WId)
{
    toldNativeWindows().emplace_back("status level");
}

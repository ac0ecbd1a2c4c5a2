#include "tests/platform/macos/FakeNativeWindows.h"

#include "platform/macos/NativeWindows.h"
#include "platform/screen/MenuPopUp.h"

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

void popUpMenu(QMenu &menu, QPoint corner)
{
    toldNativeWindows().push_back("menu at " + std::to_string(corner.x()) + ", " + std::to_string(corner.y()));
    Q_EMIT menu.aboutToShow();
    Q_EMIT menu.aboutToHide();
}

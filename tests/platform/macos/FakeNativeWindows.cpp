#include "tests/platform/macos/FakeNativeWindows.h"

#include "platform/macos/NativeWindows.h"

#include <QMenu>

#include <cmath>

std::vector<std::string> &toldNativeWindows()
{
    static std::vector<std::string> told;
    return told;
}

bool &thereAreNativeWindows()
{
    static bool areThere = true;
    return areThere;
}

std::function<void()> &whileNativeMenuIsOpen()
{
    static std::function<void()> work;
    return work;
}

void resetNativeWindows()
{
    toldNativeWindows().clear();
    thereAreNativeWindows() = true;
    whileNativeMenuIsOpen() = {};
}

bool NativeWindows::areThere()
{
    return thereAreNativeWindows();
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

void NativeWindows::popUpMenu(QMenu &menu, double x, double y)
{
    toldNativeWindows().push_back("menu at " + std::to_string(std::lround(x)) + ", " + std::to_string(std::lround(y)));
    Q_EMIT menu.aboutToShow();
    if (whileNativeMenuIsOpen()) {
        whileNativeMenuIsOpen()();
    }
    Q_EMIT menu.aboutToHide();
}

void NativeWindows::closeMenu()
{
    toldNativeWindows().emplace_back("close menu");
}

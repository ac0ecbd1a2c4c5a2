#include "platform/screen/MenuPopUp.h"

#include "platform/MainScreen.h"
#include "platform/macos/NativeWindows.h"

#include <QScopeGuard>

namespace
{
bool isOpen = false;
}

void popUpMenu(QMenu &menu, QPoint corner)
{
    if (!NativeWindows::areThere()) {
        menu.exec(corner);
        return;
    }
    isOpen = true;
    const auto closed = qScopeGuard([] { isOpen = false; });
    const NSPoint place = MainScreen::fromQt(QRect(corner, QSize(0, 0))).origin;
    // A menu that Qt draws cannot have the keyboard while the program is not the active one, which it never is.
    NativeWindows::popUpMenu(menu, place.x, place.y);
}

bool isSystemMenuOpen()
{
    return isOpen;
}

void closeSystemMenu()
{
    if (isOpen) {
        NativeWindows::closeMenu();
    }
}

#include "platform/screen/MenuPopUp.h"

#include "platform/MainScreen.h"
#include "platform/macos/NativeWindows.h"

void popUpMenu(QMenu &menu, QPoint corner)
{
    const NSPoint place = MainScreen::fromQt(QRect(corner, QSize(0, 0))).origin;
    // A menu that Qt draws cannot have the keyboard while the program is not the active one, which it never is.
    NativeWindows::popUpMenu(menu.toNSMenu(), place.x, place.y);
}

#include "platform/screen/MenuPopUp.h"

void popUpMenu(QMenu &menu, QPoint corner)
{
    menu.exec(corner);
}

bool isSystemMenuOpen()
{
    return false;
}

void closeSystemMenu() {}

#include "platform/screen/MenuPopUp.h"

#include "platform/linux/workarounds/MenuFocus.h"

#include <QPointer>

void popUpMenu(QMenu &menu, QPoint corner)
{
    const QPointer<QMenu> opened(&menu);
    menu.exec(corner);
    if (opened) {
        forgetFocusOf(*opened);
    }
}

bool isSystemMenuOpen()
{
    return false;
}

void closeSystemMenu() {}

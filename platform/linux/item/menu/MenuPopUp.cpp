#include "platform/screen/MenuPopUp.h"

#include "platform/linux/screen/windows/WindowNames.h"
#include "platform/linux/workarounds/MenuFocus.h"

#include <QAccessible>
#include <QPointer>

void popUpMenu(QMenu &menu, QPoint corner)
{
    // Qt tells readers of a menu only when its first entry is gone to, so that it would open without a word.
    const auto tellReaders = [&menu] {
        if (QAccessible::isActive() && menu.isVisible() && !menu.activeAction()) {
            QAccessibleEvent focus(&menu, QAccessible::Focus);
            QAccessible::updateAccessibility(&focus);
        }
    };
    QMetaObject::invokeMethod(&menu, tellReaders, Qt::QueuedConnection);
    // There a window that says it is a menu gets no keyboard: a program for X11 shall have it already.
    menu.setAttribute(Qt::WA_X11NetWmWindowTypePopupMenu, !isWlrootsTheWindowManager());
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

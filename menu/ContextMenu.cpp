#include "menu/ContextMenu.h"

#include "platform/screen/MenuPopUp.h"

#include <QCoreApplication>

void popUpContextMenu(QMenu &menu, QMouseEvent &event, QWidget *view, StatusBar::Edge edge)
{
    if (view) {
        QCoreApplication::sendEvent(view, &event);
    }
    QPoint corner = event.globalPosition().toPoint();
    if (edge == StatusBar::Edge::Bottom) {
        corner.ry() -= menu.sizeHint().height();
    } else if (edge == StatusBar::Edge::Right) {
        corner.rx() -= menu.sizeHint().width();
    }
    popUpMenu(menu, corner);
}

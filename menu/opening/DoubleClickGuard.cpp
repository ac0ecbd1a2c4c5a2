#include "menu/opening/DoubleClickGuard.h"

#include <QApplication>
#include <QMouseEvent>

DoubleClickGuard::DoubleClickGuard(QMenu &menu, QPoint press)
    : m_menu(menu)
    , m_press(press)
{
    m_age.start();
    menu.installEventFilter(this);
}

bool DoubleClickGuard::isOpen() const
{
    return m_age.elapsed() < QApplication::doubleClickInterval();
}

bool DoubleClickGuard::eventFilter(QObject *, QEvent *event)
{
    if (event->type() != QEvent::MouseButtonPress && event->type() != QEvent::MouseButtonDblClick) {
        return false;
    }
    // An open menu gets the presses outside of it as well.
    const auto *press = static_cast<const QMouseEvent *>(event);
    const bool isOnTheMenu = m_menu.rect().contains(press->position().toPoint());
    const QPoint way = press->globalPosition().toPoint() - m_press;
    return !isOnTheMenu && isOpen() && way.manhattanLength() <= QApplication::startDragDistance();
}

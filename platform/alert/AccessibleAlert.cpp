#include "platform/alert/AccessibleAlert.h"

#include <QWidget>

void AccessibleAlert::makeFor(QWidget &panel)
{
    QAccessible::registerAccessibleInterface(new AccessibleAlert(panel));
}

AccessibleAlert::AccessibleAlert(QWidget &panel)
    : QAccessibleWidget(&panel, QAccessible::AlertMessage)
{
}

QAccessible::State AccessibleAlert::state() const
{
    QAccessible::State state = QAccessibleWidget::state();
    state.modal = widget()->isModal();
    return state;
}

#include "notify/popup/accessible/AccessiblePopUp.h"

#include <QLabel>

void AccessiblePopUp::makeFor(QWidget &window)
{
    QAccessible::registerAccessibleInterface(new AccessiblePopUp(window));
}

void AccessiblePopUp::makeHeading(QLabel &title)
{
    QAccessible::registerAccessibleInterface(new QAccessibleWidget(&title, QAccessible::Heading));
}

AccessiblePopUp::AccessiblePopUp(QWidget &window)
    : QAccessibleWidget(&window, QAccessible::Notification)
{
}

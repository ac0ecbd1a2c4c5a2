#include "platform/linux/accessibility/AccessibleApplication.h"

#include <QApplication>
#include <QPointer>
#include <QWidget>
#include <QWindow>

namespace
{

QList<QPointer<QObject>> &objectsWithoutWindow()
{
    static QList<QPointer<QObject>> objects;
    return objects;
}

/// Whether the user sees it, and it is not part of another: a submenu is that of its entry.
bool isSeenByItself(const QAccessibleInterface &root)
{
    const auto *widget = qobject_cast<const QWidget *>(root.object());
    const QAccessibleInterface *parent = root.parent();
    return widget && widget->isVisible() && !widget->testAttribute(Qt::WA_DontShowOnScreen) && parent &&
           parent->object() == qApp;
}

QObjectList children()
{
    QObjectList list;
    for (const QPointer<QObject> &object : std::as_const(objectsWithoutWindow())) {
        if (object) {
            list.append(object);
        }
    }
    const QWindowList windows = QGuiApplication::topLevelWindows();
    for (const QWindow *window : windows) {
        if (const QAccessibleInterface *root = window->accessibleRoot(); root && isSeenByItself(*root)) {
            list.append(root->object());
        }
    }
    return list;
}

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    return object == qApp ? new AccessibleApplication : nullptr;
}

} // namespace

void AccessibleApplication::install()
{
    QAccessible::installFactory(makeInterface);
}

void AccessibleApplication::add(QObject *object)
{
    objectsWithoutWindow().removeAll(nullptr);
    objectsWithoutWindow().append(object);
}

void AccessibleApplication::announceNotifications()
{
    const QObjectList seen = children();
    for (QObject *const each : seen) {
        QAccessibleInterface *const part = QAccessible::queryAccessibleInterface(each);
        if (part && part->role() == QAccessible::Notification) {
            QAccessibleEvent shown(part, QAccessible::ObjectShow);
            QAccessible::updateAccessibility(&shown);
        }
    }
}

int AccessibleApplication::childCount() const
{
    return static_cast<int>(children().size());
}

QAccessibleInterface *AccessibleApplication::child(int index) const
{
    return QAccessible::queryAccessibleInterface(children().value(index));
}

int AccessibleApplication::indexOfChild(const QAccessibleInterface *child) const
{
    return child ? static_cast<int>(children().indexOf(child->object())) : -1;
}

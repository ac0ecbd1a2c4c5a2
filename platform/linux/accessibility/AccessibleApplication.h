#pragma once

#include <QAccessibleObject>
#include <QObjectList>

/// The root of what screen readers see of the agent. It has the part that Qt knows nothing of, the status item, and
/// menus that are open, which Qt's own root leaves out; of the windows it has those that the user sees. Main thread
/// only; once install() has been called, Qt makes it by itself when it is asked for.
class AccessibleApplication final : public QAccessibleApplication
{
public:
    /// Has Qt use this root instead of its own. To be called before anything asks for the application's interface.
    static void install();

    /// Puts an object that is in no window at the head of the application's children; it leaves them with its end.
    /// Qt must be able to find an interface for it.
    static void add(QObject *object);

    /// Tells of the notifications that are on the screen already, for a screen reader that has only just come.
    static void announceNotifications();

    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface *child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override;
};

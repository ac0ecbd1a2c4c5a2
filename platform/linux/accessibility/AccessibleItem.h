#pragma once

#include <QAccessibleObject>

#include <functional>

class StatusItem;

/// The status item as screen readers see it, however it is drawn: a button with a menu. It exists because no window of
/// Qt's does. Qt owns it and deletes it with the item. Main thread only.
class AccessibleItem final : public QAccessibleObject, public QAccessibleActionInterface
{
public:
    /// Makes it, and puts it into the tree. `showMenu` is called when a reader presses the item, and returns at once.
    static void makeFor(StatusItem &item, std::function<void()> showMenu);

    /// Tells readers, if there are any, that what the item is called or can do has changed.
    static void tellOfChange(StatusItem &item);
    /// The same of the keyboard, which the item has now, or no longer.
    static void tellOfFocus(StatusItem &item, bool focused);
    /// The same of its end, which is near.
    static void tellOfEnd(StatusItem &item);

    [[nodiscard]] QAccessibleInterface *parent() const override;
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::Button; }
    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] void *interface_cast(QAccessible::InterfaceType type) override;

    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString &name) override;
    [[nodiscard]] QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    AccessibleItem(StatusItem &item, std::function<void()> showMenu);

    [[nodiscard]] StatusItem &item() const;

    const std::function<void()> m_showMenu;
    bool m_focused = false;
};

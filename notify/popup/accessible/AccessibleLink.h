#pragma once

#include <QAccessible>
#include <QPointer>

class KivTextView;

/// A link in the text of a pop-up, as screen readers see it: pressed, it is as if it had been clicked. It is the one at
/// that place among the text's links, and invalid while there are not as many. Owned by AccessibleMessage.
class AccessibleLink final : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    AccessibleLink(KivTextView &view, int index);

    [[nodiscard]] int index() const noexcept { return m_index; }

    [[nodiscard]] bool isValid() const override;
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QWindow *window() const override;
    [[nodiscard]] QAccessibleInterface *parent() const override;
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString &) override {}
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::Link; }
    [[nodiscard]] QAccessible::State state() const override;
    [[nodiscard]] void *interface_cast(QAccessible::InterfaceType type) override;

    [[nodiscard]] QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString &name) override;
    [[nodiscard]] QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    const QPointer<KivTextView> m_view;
    const int m_index;
};

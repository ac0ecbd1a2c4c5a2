#pragma once

#include <QAccessibleWidget>

#include <vector>

class KivTextView;

/// The text of a pop-up as screen readers see it: one label, and in it a link for each link. Made for a view before
/// anything has asked for its interface; Qt owns it and deletes it with the view. Nothing in it can be selected.
class AccessibleMessage final : public QAccessibleWidget, public QAccessibleTextInterface
{
public:
    static void makeFor(KivTextView &view);
    ~AccessibleMessage() override;

    [[nodiscard]] int childCount() const override;
    [[nodiscard]] QAccessibleInterface *child(int index) const override;
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *child) const override;
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    [[nodiscard]] void *interface_cast(QAccessible::InterfaceType type) override;

    void selection(int, int *start, int *end) const override;
    [[nodiscard]] int selectionCount() const override { return 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    [[nodiscard]] int cursorPosition() const override { return 0; }
    void setCursorPosition(int) override {}
    [[nodiscard]] QString text(int start, int end) const override;
    [[nodiscard]] int characterCount() const override;
    [[nodiscard]] QRect characterRect(int offset) const override;
    [[nodiscard]] int offsetAtPoint(const QPoint &point) const override;
    void scrollToSubstring(int start, int end) override;
    QString attributes(int offset, int *start, int *end) const override;

private:
    explicit AccessibleMessage(KivTextView &view);

    [[nodiscard]] KivTextView &view() const;

    mutable std::vector<QAccessible::Id> m_links; ///< The interfaces that have been made so far, in their order.
};

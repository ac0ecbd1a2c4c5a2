#pragma once

#include <QAccessibleWidget>

/// An alert as screen readers see it: they read its name, its description and its buttons as it comes up. Made for a
/// panel before anything has asked for its interface; Qt owns it and deletes it with the panel.
class AccessibleAlert final : public QAccessibleWidget
{
public:
    static void makeFor(QWidget &panel);

    [[nodiscard]] QAccessible::State state() const override;

private:
    explicit AccessibleAlert(QWidget &panel);
};

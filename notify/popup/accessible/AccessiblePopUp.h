#pragma once

#include <QAccessibleWidget>

class QLabel;

/// The pop-up as screen readers see it: a notification, which they read when it shows, from its name and the labels in
/// it, without going there. Made for a window before anything has asked for its interface; Qt owns it and deletes it
/// with the window.
class AccessiblePopUp final : public QAccessibleWidget
{
public:
    static void makeFor(QWidget &window);

    /// Has readers take the pop-up's title, which is its name already, for a heading and not for one more label.
    static void makeHeading(QLabel &title);

private:
    explicit AccessiblePopUp(QWidget &window);
};

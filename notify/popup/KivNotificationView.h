#pragma once

#include <QWidget>

/// The background of a pop-up: a rounded rectangle in the window's colour, and round it a soft shadow in a window that
/// can be translucent.
class KivNotificationView final : public QWidget
{
    Q_OBJECT

public:
    /// How far inside the view the rounded rectangle lies, in points; the shadow has as much room.
    static constexpr int inset = 3;

    explicit KivNotificationView(QWidget *parent);

    /// What the window is to be cut to, in its own coordinates: without the corners, and without the rim where that
    /// could only be black.
    [[nodiscard]] QRegion mask() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] bool isTranslucent() const;
};

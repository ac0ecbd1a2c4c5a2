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

    /// The shape mask for the window, in its own coordinates: without the corners, and without the rim in a window that
    /// is not translucent, where the rim would be black.
    [[nodiscard]] QRegion mask() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] bool isTranslucent() const;
};

#pragma once

#include <QRegion>
#include <QWidget>

/// The ring round the part of a pop-up that the keys are at. It lies over all else in its parent and lets the mouse
/// through. Main thread only.
class FocusRing final : public QWidget
{
    Q_OBJECT

public:
    /// Hidden at first.
    explicit FocusRing(QWidget *parent);

    /// Shows it round `place`, in the parent's coordinates: a part may be several lines of text. Hides it when that is
    /// empty.
    void showAround(const QRegion &place);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QRegion m_place; ///< In its own coordinates.
};

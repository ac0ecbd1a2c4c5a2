#pragma once

#include <QPoint>
#include <QWidget>

/// The invisible window whose context menu the status menu is. It is never shown on the screen: without a compositor
/// even a window of opacity 0 would be a grey square. Deletes itself when closed.
class AnchorWindow final : public QWidget
{
    Q_OBJECT

public:
    /// A window whose bottom-left corner is at `anchor` (Qt's global coordinates): most of it may lie above the screen.
    explicit AnchorWindow(QPoint anchor);
};

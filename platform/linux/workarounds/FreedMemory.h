#pragma once

#include <QObject>
#include <QTimer>

/// Gives the memory that windows leave behind back to the system, two seconds after one has gone.
///
/// What is freed stays with the process while anything above it on the heap is in use, which after a menu, an alert and
/// a few pop-ups is 120 kB, in every session and for good. Main thread only.
class FreedMemory final : public QObject
{
    Q_OBJECT

public:
    /// From now on, as long as the application object lives, which owns this.
    static void giveBackAfterWindows();

private:
    explicit FreedMemory(QObject *parent);

    bool eventFilter(QObject *watched, QEvent *event) override;
    static void giveBack();

    QTimer m_later;
};

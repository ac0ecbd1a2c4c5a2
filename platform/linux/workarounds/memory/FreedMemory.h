#pragma once

#include <QObject>
#include <QTimer>

/// Gives the memory that windows leave behind back to the system, two seconds after one has gone.
///
/// Symptom: what is freed stays with the process while anything above it on the heap is in use. And Xlib notes each
///   request of Qt's that follows one of its own, 200 bytes a window, until a reply comes to itself, which Qt never
///   waits for.
/// Of: the GNU C library and libX11 as Qt uses it (6.4 to 6.11), by their design. No report found.
/// Left out: 120 kB after a menu, an alert and a few pop-ups, in every session and for good.
/// Still needed? WorkaroundMemory.FreedMemory tells of the one, and WorkaroundNeed.FreedMemoryOfXlib of the other.
///
/// Main thread only.
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

#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

/// Closes each window that another program has destroyed, as if its window manager had closed it.
///
/// Symptom: Qt takes no notice when another client of the X server destroys a window of this program. To it the window
///   stays open: a dialog is waited for that nobody can answer any more.
/// Of: Qt, the platform xcb, seen with 6.4. No report found.
/// Left out: the item does nothing any more, since a panel has to be answered first; no message comes after one that
///   stays until its user closes it.
/// Still needed? WorkaroundNeed.LostWindows tells.
///
/// Main thread only.
class LostWindows final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// From now on, as long as the application object lives, which owns this. Without an X server nothing is done.
    static void close();

private:
    explicit LostWindows(QObject *parent);

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
};

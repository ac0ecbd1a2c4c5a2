#pragma once

#include "platform/linux/include/HiddenWindow.h"

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QPointer>

#include <functional>
#include <vector>

/// What others write on the root window, heard only while it matters.
///
/// Symptom: window managers and panels change properties of the root window all the time, and Qt has itself told of
///   every change: two of this program's threads wake up for each. Of all those properties Qt uses but two: the work
///   area, to place a menu or a dialog, and what the window manager can do, to give a window the keyboard.
/// Of: Qt 6.4 to 6.11, the platform xcb. No report found.
/// Left out: wake-ups in every session whenever a window opens, closes or is renamed in it.
/// Still needed? WorkaroundNeed.RootProperties tells.
///
/// So they are heard only while a window of this program is on the screen, or something of its own goes by them; and
/// what is about to show a window has Qt catch up with them first. Main thread only.
class RootProperties final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// From now on, as long as the application object lives, which owns this. Without an X server nothing is done.
    static void hearOnlyWhileShown();

    /// For what itself hears of them, without a window that is shown: from now on, as long as `listener` lives.
    static void hear(QObject *listener);

    /// For what shows a window: has Qt catch up, and calls `show` from the event loop when it has; not at all when
    /// `context` has gone by then.
    static void catchUpAndShow(QObject *context, std::function<void()> show);

private:
    struct Waiting {
        QPointer<QObject> context;
        std::function<void()> show;
    };

    explicit RootProperties(QObject *parent);
    ~RootProperties() override;

    bool eventFilter(QObject *watched, QEvent *event) override;
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    void catchUp();
    void catchUpAgain();
    void proceed();
    void update();
    static void setHeard(bool heard);

    HiddenWindow m_window; ///< What this sends to itself goes there.
    std::vector<Waiting> m_waiting;
    int m_listeners = 0;
};

#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QPointer>

#include <xcb/xcb.h>

#include <functional>
#include <vector>

/// What others write on the root window, heard only while it matters.
///
/// Window managers and panels change properties of the root window all the time, and Qt has itself told of every
/// change: two of this program's threads would wake up for each. Of all those properties Qt uses but two: the work
/// area, to place a menu or a dialog, and what the window manager can do, to give a window the keyboard. So they are
/// heard only while a window of this program is on the screen, and hear() catches up with them before one comes up.
/// Main thread only.
class RootProperties final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// From now on, as long as the application object lives, which owns this. Without an X server nothing is done.
    static void hearOnlyWhileShown();

    /// Calls `then` from the event loop once Qt has caught up; not at all when `context` has gone by then.
    static void hear(QObject *context, std::function<void()> then);

private:
    struct Waiting {
        QPointer<QObject> context;
        std::function<void()> then;
    };

    explicit RootProperties(QObject *parent);
    ~RootProperties() override;

    bool eventFilter(QObject *watched, QEvent *event) override;
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    void catchUp();
    void proceed();
    void update();
    static void setHeard(bool heard);

    xcb_window_t m_window = XCB_NONE; ///< What this sends to itself goes there.
    std::vector<Waiting> m_waiting;
};

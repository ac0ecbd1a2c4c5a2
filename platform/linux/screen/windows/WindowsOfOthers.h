#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <xcb/xcb.h>

#include <functional>

/// Where no window manager runs, whatever is mapped lies above all that is there. This keeps a window of ours above
/// such windows of others; not above those that no window manager would touch either (override-redirect), which are
/// menus, tool tips and screen lockers. It does so until its owner, a widget, is hidden, or ends. Needs X; main thread
/// only.
class WindowsOfOthers final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// `stayingAbove` tells which window that is: a child of the root window, or XCB_NONE for none at present.
    WindowsOfOthers(QObject &owner, std::function<xcb_window_t()> stayingAbove);
    ~WindowsOfOthers() override;

    /// Whether a window manager runs.
    [[nodiscard]] static bool areManaged();
    /// The selection that it owns then: WM_S and the screen's number (ICCCM 2.0, section 4.3).
    [[nodiscard]] static QByteArray managersSelection();

private:
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    void stopHearing();

    QObject &m_owner;
    const std::function<xcb_window_t()> m_window;
    bool m_hears = true;
};

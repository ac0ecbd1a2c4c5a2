#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QWidget>

/// Where no window manager runs, whatever is mapped lies above all that is there. This keeps a window of ours above
/// such windows of others while it is shown; not above those that no window manager would touch either
/// (override-redirect), which are menus, tool tips and screen lockers. The window owns it. Needs X; main thread only.
class WindowsOfOthers final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    explicit WindowsOfOthers(QWidget &stayingAbove);
    ~WindowsOfOthers() override;

    /// Whether a window manager runs: it owns the selection WM_S and the screen's number (ICCCM 2.0, section 4.3).
    [[nodiscard]] static bool areManaged();

private:
    bool eventFilter(QObject *watched, QEvent *event) override;
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    void stopHearing();
    static void setHeard(bool heard);

    QWidget &m_window;
    bool m_hears = true;
};

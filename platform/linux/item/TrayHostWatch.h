#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <xcb/xcb.h>

#include <memory>

class QDBusServiceWatcher;

/// Watches which hosts for status items the session has: the owner of the tray selection on the X server and the owner
/// of org.kde.StatusNotifierWatcher on the session bus. It learns of every change from the server and the bus, and
/// asks nobody in between. Main thread only.
class TrayHostWatch final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    explicit TrayHostWatch(QObject *parent = nullptr);
    ~TrayHostWatch() override;

    /// The window that owns the tray selection; XCB_NONE when there is no such tray.
    [[nodiscard]] xcb_window_t tray() const noexcept { return m_tray; }
    [[nodiscard]] bool hasNotifierHost() const noexcept { return m_hasNotifierHost; }

Q_SIGNALS:
    /// One of the two is another than before, also when one owner has followed another directly. From the event loop.
    void changed();

private:
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    void watchSelection();
    void watchBus();
    void setTray(xcb_window_t owner);
    void setHasNotifierHost(bool has);

    // Selection events are addressed to a window; one of our own keeps clear of what Qt selects on the root window.
    xcb_window_t m_window = XCB_NONE;
    std::uint8_t m_selectionNotify = 0; ///< The event's number on this server.
    xcb_window_t m_tray = XCB_NONE;
    bool m_hasNotifierHost = false;
    std::unique_ptr<QDBusServiceWatcher> m_busWatcher;
};

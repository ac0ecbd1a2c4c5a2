#pragma once

#include "platform/linux/include/HiddenWindow.h"

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

/// Watches the tray of the X display: the owner of the tray selection. Hears of every change from the X server, and
/// never polls. Main thread only.
class TrayHostWatch final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    explicit TrayHostWatch(QObject *parent = nullptr);
    ~TrayHostWatch() override;

    /// The window that owns the tray selection; XCB_NONE when there is no such tray.
    [[nodiscard]] xcb_window_t tray() const noexcept { return m_tray; }
    /// Whether that tray is one of those known to hand its windows on to a StatusNotifierItem host.
    [[nodiscard]] bool isProxy() const noexcept { return m_isProxy; }

Q_SIGNALS:
    /// The tray has changed, from one owner to the next included. From the event loop.
    void changed();

private:
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    /// The present owner, of whose changes it hears from now on.
    xcb_window_t watchSelection();
    void handleOwner(xcb_window_t owner);
    void setTray(xcb_window_t owner);

    // Selection events are addressed to a window; one of our own keeps clear of what Qt selects on the root window.
    std::optional<HiddenWindow> m_window;
    std::uint8_t m_selectionNotify = 0; ///< The event's number on this server.
    xcb_window_t m_tray = XCB_NONE;
    bool m_isProxy = false;
};

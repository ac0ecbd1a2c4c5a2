#pragma once

#include "platform/linux/screen/SelectionWatch.h"

#include <QObject>

#include <xcb/xcb.h>

/// Watches the tray of the X display: the owner of the tray selection. Hears of every change from the X server, and
/// never polls. Main thread only.
class TrayHostWatch final : public QObject
{
    Q_OBJECT

public:
    explicit TrayHostWatch(QObject *parent = nullptr);

    /// The window that owns the tray selection; XCB_NONE when there is no such tray.
    [[nodiscard]] xcb_window_t tray() const noexcept { return m_tray; }
    /// Whether that tray is one of those known to hand its windows on to a StatusNotifierItem host.
    [[nodiscard]] bool isProxy() const noexcept { return m_isProxy; }

Q_SIGNALS:
    /// The tray has changed, from one owner to the next included. From the event loop.
    void changed();

private:
    void handleOwner(xcb_window_t owner);
    void setTray(xcb_window_t owner);

    SelectionWatch m_selection;
    xcb_window_t m_tray = XCB_NONE;
    bool m_isProxy = false;
};

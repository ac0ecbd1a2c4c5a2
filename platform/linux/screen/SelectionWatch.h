#pragma once

#include "platform/linux/include/HiddenWindow.h"

#include <QAbstractNativeEventFilter>
#include <QByteArray>

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>

/// Watches the owner of a selection of the X display. Hears of every change from the X server, from one owner straight
/// to the next included, and never polls. Main thread only.
class SelectionWatch final : private QAbstractNativeEventFilter
{
public:
    /// `changed` is called with the new owner, XCB_NONE when there is none, from inside Qt's event filters. It may be
    /// called with the same owner again. Without an X server, or without its extension XFIXES, never.
    SelectionWatch(QByteArray selection, std::function<void(xcb_window_t)> changed);

    /// The owner when this was made.
    [[nodiscard]] xcb_window_t firstOwner() const noexcept { return m_firstOwner; }

private:
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    /// The present owner, of whose changes it hears from now on.
    xcb_window_t watch();

    const QByteArray m_selection;
    const std::function<void(xcb_window_t)> m_changed;
    // Selection events are addressed to a window; one of our own keeps clear of what Qt selects on the root window.
    std::optional<HiddenWindow> m_window;
    std::uint8_t m_selectionNotify = 0; ///< The event's number on this server.
    xcb_window_t m_firstOwner = XCB_NONE;
};

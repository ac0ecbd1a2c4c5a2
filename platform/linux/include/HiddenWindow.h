#pragma once

#include <QAbstractNativeEventFilter>

#include <xcb/xcb.h>

#include <functional>

/// A window that nobody sees, for what the X server addresses to a window or ties to one. Any other program may destroy
/// it: then it is made again, under another id. Needs X; main thread only.
class HiddenWindow final : private QAbstractNativeEventFilter
{
public:
    /// `madeAgain` is called, from inside Qt's event filters, each time that it had to be made again.
    explicit HiddenWindow(std::function<void()> madeAgain);
    ~HiddenWindow() override;
    HiddenWindow(const HiddenWindow &) = delete;
    HiddenWindow &operator=(const HiddenWindow &) = delete;

    [[nodiscard]] xcb_window_t id() const noexcept { return m_window; }

private:
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

    xcb_window_t m_window;
    std::function<void()> m_madeAgain;
};

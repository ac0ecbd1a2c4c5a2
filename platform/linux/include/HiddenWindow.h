#pragma once

#include <QAbstractNativeEventFilter>

#include <xcb/xcb.h>

#include <array>
#include <cstring>
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

    /// Sends this program an event as if the server itself told of something, for Qt or for whoever listens here. For
    /// no mask, it goes to whoever has made this window: nobody else hears it. Not flushed.
    template <typename Event>
    void sendHere(const Event &event) const
    {
        std::array<char, 32> bytes = {}; // Each event has as many.
        static_assert(sizeof event <= bytes.size());
        std::memcpy(bytes.data(), &event, sizeof event);
        sendBytesHere(bytes);
    }

private:
    void sendBytesHere(const std::array<char, 32> &bytes) const;
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

    xcb_window_t m_window;
    std::function<void()> m_madeAgain;
};

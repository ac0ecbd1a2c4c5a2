#pragma once

#include "platform/linux/item/TrayIconWindow.h"
#include "platform/linux/screen/ScreenChanges.h"
#include "platform/linux/screen/SelectionWatch.h"
#include "platform/linux/screen/windows/WindowsOfOthers.h"

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <memory>
#include <optional>

/// A status item that stands by itself, at the top edge of the main screen's work area, which it follows when it
/// changes. The user can drag it along that edge; where it was put last, counted from the area's right edge, it stands
/// again the next time, in this session of the X server, and after a restart of this program too: the root window keeps
/// it as the property _KIVMENUA_ITEM, in device pixels, with the pixels of a point at that time. While no
/// window manager runs it stays above the windows of others. Needs X; main thread only.
class Strip final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// Null when there is no main screen, or its visual cannot be painted.
    [[nodiscard]] static std::unique_ptr<Strip> make();
    ~Strip() override;

    [[nodiscard]] TrayIconWindow &window() noexcept { return *m_window; }

Q_SIGNALS:
    /// The user has put it elsewhere. From the event loop.
    void moved();

private:
    explicit Strip(std::unique_ptr<TrayIconWindow> window);

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    void follow();
    void stayAboveWhatNobodyManages();
    void handlePress(const xcb_button_press_event_t &press);
    void handleMotion(const xcb_motion_notify_event_t &motion);
    void handleRelease(const xcb_button_release_event_t &release);
    void stand(const QRect &place);

    std::unique_ptr<TrayIconWindow> m_window;
    ScreenChanges m_screens;
    SelectionWatch m_manager;
    std::unique_ptr<WindowsOfOthers> m_others;       ///< While no window manager runs.
    QRect m_place;                                   ///< Where it is, be it under the mouse.
    QRect m_settled;                                 ///< Where it is while nobody drags it.
    std::optional<xcb_button_press_event_t> m_press; ///< Of the primary button, while it is down.
    QRect m_area;                                    ///< In which it is dragged.
    bool m_isDragged = false;
};

#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>

/// Keeps Qt from seeing presses and moves of the mouse in a window that it has hidden already.
///
/// Symptom: such an event is on its way while a pop-up closes because its time is over. Qt remembers the window for
///   it as the one that was pressed, and does not forget it when the window is deleted right after; whichever window
///   is hidden next then looks at memory that is free.
/// Of: Qt 6.4 to 6.11, QGuiApplication with the platform xcb. No report found.
/// Left out: a crash when the user presses a pop-up in the very moment in which it closes.
/// Still needed? WorkaroundNeed.LateMouseEvents tells.
///
/// Main thread only.
class LateMouseEvents final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    /// From now on, as long as the application object lives, which owns this. Without an X server nothing is done.
    /// Called once.
    static void keepFromQt();

private:
    LateMouseEvents(QObject *parent, std::uint8_t inputExtension);

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    /// The window that the mouse was pressed or moved in; nothing for any other event.
    [[nodiscard]] std::optional<xcb_window_t> windowOf(const xcb_generic_event_t *event) const;

    const std::uint8_t m_inputExtension; ///< The number that its events have in this X server.
};

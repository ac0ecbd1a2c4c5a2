#pragma once

#include "platform/linux/desktop/XSettings.h"
#include "platform/linux/screen/SelectionWatch.h"

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <xcb/xcb.h>

/// "_XSETTINGS_S" and the screen's number: the selection whose owner is the desktop's settings daemon.
[[nodiscard]] QByteArray xSettingsSelection(int screen);

/// What the settings daemon of that screen says now; no settings when there is none, or none that can be read. Asks the
/// server three times. `x` may be any connection.
[[nodiscard]] XSettings askForXSettings(xcb_connection_t *x, int screen);

/// Watches the settings daemon of the X display, whichever it is. Main thread only.
class XSettingsWatch final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    explicit XSettingsWatch(QObject *parent = nullptr);

    /// As it is now; asks the server.
    [[nodiscard]] static XSettings settings();

Q_SIGNALS:
    /// Something is set anew, or the daemon has come, gone or been replaced. From the event loop.
    void changed();

private:
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    void follow(xcb_window_t manager);
    void tellOfChange();

    bool m_isToTell = false;
    xcb_window_t m_manager = XCB_NONE;
    SelectionWatch m_selection;
};

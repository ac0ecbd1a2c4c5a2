#pragma once

#include "platform/linux/desktop/XSettings.h"
#include "platform/linux/include/HiddenWindow.h"

#include <QAbstractNativeEventFilter>
#include <QObject>

#include <optional>

/// Gives the windows of this program the scale of the desktop's, whenever it changes: by its settings or, where these
/// say nothing of dots per inch, by the X resources. What Qt follows by itself, the dots per inch of the settings
/// daemon that was there at the start, is a part of it.
///
/// A menu that is open closes, a dialog is shown anew, and everybody else hears of it as of another resolution, by
/// QScreen::geometryChanged. Does nothing when StartScale has announced nothing. Main thread only.
class DesktopScale final : public QObject, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    DesktopScale();

    void follow(const XSettings &settings);

private:
    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;
    void update();
    void apply();
    void setScale();
    void tellQtOfScreens() const;

    XSettings m_settings;
    std::optional<double> m_scale;        ///< What the screens have.
    std::optional<HiddenWindow> m_window; ///< What this sends to itself goes there.
};

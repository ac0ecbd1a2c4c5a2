#pragma once

#include "platform/linux/desktop/ColourSchemePortal.h"
#include "platform/linux/desktop/XSettingsWatch.h"
#include "platform/screen/DesktopLook.h"

#include <QFont>
#include <QObject>

#include <optional>

/// Gives the application the colours and the font that the desktop has, whenever they change. Main thread only.
class DesktopFollower final : public QObject
{
    Q_OBJECT

public:
    DesktopFollower(DesktopLook::Part part, SessionBus &bus, QObject *parent);

private:
    void update();
    void updateColours(const XSettings &settings);
    void updateFont(const QByteArray &name);

    const DesktopLook::Part m_part;
    const QFont m_ownFont; ///< For what the desktop does not say.
    QByteArray m_fontName;
    bool m_isDark = false;
    XSettingsWatch m_settings;
    ColourSchemePortal m_portal;
};

#include "platform/linux/item/SystemTrayStandIn.h"

#include "platform/linux/workarounds/RootProperties.h"

SystemTrayStandIn::SystemTrayStandIn()
{
    connect(&m_icon, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason reason) {
        if (reason == QSystemTrayIcon::Trigger) {
            RootProperties::hear(this, [this] { Q_EMIT pressed(); });
        }
    });
}

void SystemTrayStandIn::setLook(const StatusItemLook &look)
{
    m_icon.setIcon(iconWithLook(look.image, look.iconLook()));
    m_icon.setToolTip(look.toolTip);
    m_icon.show();
}

#include "platform/linux/item/menu/MenuRequests.h"

#include "MenuRequestsAdaptor.h"
#include "platform/linux/include/MenuObjectPath.h"
#include "platform/linux/item/menu/KeyboardGrab.h"
#include "platform/linux/workarounds/RootProperties.h"

#include <QApplication>

MenuRequests::MenuRequests(SessionBus &bus)
    : m_bus(bus)
{
    new MenuRequestsAdaptor(this);
    connect(&m_bus, &SessionBus::connected, this, &MenuRequests::serve);
    serve();
}

MenuRequests::~MenuRequests()
{
    m_bus.connection().unregisterObject(menuObjectPath());
}

void MenuRequests::serve()
{
    if (m_bus.isConnected()) {
        m_bus.connection().registerObject(menuObjectPath(), this, QDBusConnection::ExportAdaptors);
    }
}

void MenuRequests::ShowMenu()
{
    if (m_isPending) {
        return; // A key that is held down asks again and again.
    }
    m_isPending = true;
    whenKeyboardIsFree(this, [this] {
        m_isPending = false;
        RootProperties::catchUpAndShow(this, [this] {
            if (!QApplication::activePopupWidget()) {
                Q_EMIT requested();
            }
        });
    });
}

#include "platform/linux/item/menu/MenuRequests.h"

#include "platform/linux/bus/Contracts.h"
#include "platform/linux/include/MenuObjectPath.h"
#include "platform/linux/item/menu/KeyboardGrab.h"
#include "platform/linux/workarounds/RootProperties.h"

#include <QApplication>

MenuRequests::MenuRequests(SessionBus &bus)
    : ObjectInTurns(menuInterface(), menuContract)
    , m_bus(bus)
{
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
        m_bus.connection().registerVirtualObject(menuObjectPath(), this);
    }
}

WorkInTurns::Work MenuRequests::workFor(const QDBusMessage &call, const QDBusConnection &connection)
{
    if (call.member() != QLatin1String("ShowMenu")) {
        return {};
    }
    return [this, call, connection] {
        if (!call.signature().isEmpty()) {
            refuse(call, connection, QDBusError::InvalidArgs, QStringLiteral("ShowMenu has no arguments"));
            return;
        }
        if (call.isReplyRequired()) {
            connection.send(call.createReply());
        }
        showMenu();
    };
}

void MenuRequests::showMenu()
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

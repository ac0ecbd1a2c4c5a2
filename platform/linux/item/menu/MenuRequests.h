#pragma once

#include "platform/linux/bus/ObjectInTurns.h"
#include "platform/linux/include/SessionBus.h"

/// The object by which other programs have the menu opened, as those do that a key is bound to: the contract
/// resources/dbus/com.tamborel.kivune.Menu.xml. On the bus as long as it lives, across the bus's own ends. Main thread
/// only.
class MenuRequests final : public ObjectInTurns
{
    Q_OBJECT

public:
    /// `bus` must outlive this object.
    explicit MenuRequests(SessionBus &bus);
    ~MenuRequests() override;

    /// As a call of ShowMenu.
    void showMenu();

Q_SIGNALS:
    /// The menu is to open, unless one is open already. From the event loop, when a menu would get the keyboard.
    void requested();

private:
    [[nodiscard]] WorkInTurns::Work workFor(const QDBusMessage &call, const QDBusConnection &connection) override;
    void serve();

    SessionBus &m_bus;
    bool m_isPending = false; ///< Between the request and the moment at which the keyboard is free.
};

#include "platform/linux/item/menu/BusMenuTypes.h"

#include <QDBusMetaType>

QDBusArgument &operator<<(QDBusArgument &argument, const BusMenuEntry &entry)
{
    argument.beginStructure();
    argument << entry.id << entry.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, BusMenuEntry &entry)
{
    argument.beginStructure();
    argument >> entry.id >> entry.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const BusMenuLayout &layout)
{
    argument.beginStructure();
    argument << layout.id << layout.properties;
    argument.beginArray(QMetaType::fromType<QDBusVariant>());
    for (const BusMenuLayout &child : layout.children) {
        argument << QDBusVariant(QVariant::fromValue(child));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, BusMenuLayout &layout)
{
    argument.beginStructure();
    argument >> layout.id >> layout.properties;
    layout.children.clear();
    argument.beginArray();
    while (!argument.atEnd()) {
        QDBusVariant child;
        argument >> child;
        layout.children.append(qdbus_cast<BusMenuLayout>(child.variant()));
    }
    argument.endArray();
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const BusMenuRemoval &removal)
{
    argument.beginStructure();
    argument << removal.id << removal.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, BusMenuRemoval &removal)
{
    argument.beginStructure();
    argument >> removal.id >> removal.properties;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const BusMenuEvent &event)
{
    argument.beginStructure();
    argument << event.id << event.event << event.data << event.timestamp;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, BusMenuEvent &event)
{
    argument.beginStructure();
    argument >> event.id >> event.event >> event.data >> event.timestamp;
    argument.endStructure();
    return argument;
}

void registerBusMenuTypes()
{
    qDBusRegisterMetaType<QList<int>>();
    qDBusRegisterMetaType<BusMenuEntry>();
    qDBusRegisterMetaType<BusMenuEntries>();
    qDBusRegisterMetaType<BusMenuLayout>();
    qDBusRegisterMetaType<BusMenuRemoval>();
    qDBusRegisterMetaType<BusMenuRemovals>();
    qDBusRegisterMetaType<BusMenuEvent>();
    qDBusRegisterMetaType<BusMenuEvents>();
    // The adaptor has them by these names, not by what they stand for.
    qRegisterMetaType<BusMenuEntries>("BusMenuEntries");
    qRegisterMetaType<BusMenuRemovals>("BusMenuRemovals");
    qRegisterMetaType<BusMenuEvents>("BusMenuEvents");
}

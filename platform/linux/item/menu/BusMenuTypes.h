#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVariantMap>

/// What com.canonical.dbusmenu hands over; see resources/dbus/com.canonical.dbusmenu.xml.

/// (ia{sv}): an entry with some of its properties.
struct BusMenuEntry {
    int id = 0;
    QVariantMap properties;
};
using BusMenuEntries = QList<BusMenuEntry>;

/// (ia{sv}av): the same with what lies below it.
struct BusMenuLayout {
    int id = 0;
    QVariantMap properties;
    QList<BusMenuLayout> children;
};

/// (ias): properties that an entry has no more.
struct BusMenuRemoval {
    int id = 0;
    QStringList properties;
};
using BusMenuRemovals = QList<BusMenuRemoval>;

/// (isvu): something that has happened to an entry where the menu is drawn.
struct BusMenuEvent {
    int id = 0;
    QString event;
    QDBusVariant data;
    uint timestamp = 0;
};
using BusMenuEvents = QList<BusMenuEvent>;

QDBusArgument &operator<<(QDBusArgument &argument, const BusMenuEntry &entry);
const QDBusArgument &operator>>(const QDBusArgument &argument, BusMenuEntry &entry);
QDBusArgument &operator<<(QDBusArgument &argument, const BusMenuLayout &layout);
const QDBusArgument &operator>>(const QDBusArgument &argument, BusMenuLayout &layout);
QDBusArgument &operator<<(QDBusArgument &argument, const BusMenuRemoval &removal);
const QDBusArgument &operator>>(const QDBusArgument &argument, BusMenuRemoval &removal);
QDBusArgument &operator<<(QDBusArgument &argument, const BusMenuEvent &event);
const QDBusArgument &operator>>(const QDBusArgument &argument, BusMenuEvent &event);

/// Makes the types known to QtDBus.
void registerBusMenuTypes();

#pragma once

#include <QDBusConnection>
#include <QObject>
#include <QTimer>

/// The program's one connection to the session bus, kept alive.
///
/// The address is DBUS_SESSION_BUS_ADDRESS, else $XDG_RUNTIME_DIR/bus if that exists; with neither there is no bus, and
/// no other is ever started. Qt's shared QDBusConnection::sessionBus() is not used: once its bus has died it stays
/// dead, and it may start stray buses. A lost or missing bus is tried again every 5 s. Main thread only.
class SessionBus final : public QObject
{
    Q_OBJECT

public:
    /// The one instance, connected (if it can be) at first use.
    [[nodiscard]] static SessionBus &instance();

    SessionBus();
    ~SessionBus() override;

    [[nodiscard]] bool isConnected() const;
    /// The present connection; one that is not connected when there is no bus. Ask again after each connected().
    [[nodiscard]] QDBusConnection connection() const;

    /// The process behind a bus name; 0 when nobody owns it. Blocks for at most 500 ms.
    [[nodiscard]] qint64 processOf(const QString &busName) const;

Q_SIGNALS:
    void connected();    ///< A connection stands, the first time or again: register objects and names now.
    void disconnected(); ///< The bus has gone.
};

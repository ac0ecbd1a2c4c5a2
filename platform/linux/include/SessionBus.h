#pragma once

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QObject>
#include <QStringList>
#include <QTimer>

#include <chrono>
#include <optional>

/// The program's one connection to the session bus, kept alive.
///
/// Its address is sessionBusAddress(); no bus is ever started. Qt's shared QDBusConnection::sessionBus() is not used:
/// once its bus has died it stays dead, and it may start stray buses. A lost or missing bus is tried again every 5 s; a
/// bus that accepts connections but does not answer within 500 ms counts as missing. Main thread only.
class SessionBus final : public QObject
{
    Q_OBJECT

public:
    /// The one instance, connected (if it can be) at first use.
    [[nodiscard]] static SessionBus &instance();
    /// Asks the session bus whether it answers, for what is to be known of it before there is an application. The next
    /// connection is made without asking once more. False when a bus is there and does not answer. Blocks for at most
    /// 500 ms.
    [[nodiscard]] static bool probeAhead();

    /// A connection apart from the one instance, for tests: `retryInterval` is the time from one try to the next.
    explicit SessionBus(std::chrono::milliseconds retryInterval = std::chrono::seconds(5));
    ~SessionBus() override;

    [[nodiscard]] bool isConnected() const;
    /// The present connection; one that is not connected when there is no bus. Ask again after each connected().
    [[nodiscard]] QDBusConnection connection() const;

    /// One more connection to the same bus, for an object whose end others notice by the end of its connection; one
    /// that is not connected when there is no bus, or it has no room or does not answer within 500 ms. The caller ends
    /// it, by QDBusConnection::disconnectFromBus.
    [[nodiscard]] QDBusConnection connectOnceMore() const;

    /// The process behind a bus name, unique or well-known; 0 for an unowned name, none when there is no bus or it does
    /// not answer. Blocks for at most 500 ms.
    [[nodiscard]] std::optional<qint64> processOf(const QString &busName) const;
    /// The unique name of a bus name's owner; empty for an unowned name, null when there is no bus or it does not
    /// answer. Blocks for at most 500 ms.
    [[nodiscard]] QString ownerOf(const QString &busName) const;
    /// All names on the bus; none when there is no bus or it does not answer. Blocks for at most 500 ms.
    [[nodiscard]] QStringList names() const;
    /// Requests a bus name for this connection. While another connection owns it, which is worth a warning, this one
    /// waits in the bus's queue for the name. False when the bus refuses. Blocks for at most 500 ms; a bus that has not
    /// answered by then still handles this request before all later ones.
    [[nodiscard]] bool requestName(const QString &busName) const;
    /// Releases a bus name, in the same way.
    void releaseName(const QString &busName) const;
    /// Returns once the bus has all that was sent before. Blocks for at most 500 ms.
    void flush() const;

Q_SIGNALS:
    void connected();    ///< A connection stands, the first time or again: register objects and names now.
    void disconnected(); ///< The bus has gone.

private Q_SLOTS:
    void onDisconnected();

private:
    [[nodiscard]] QDBusMessage ask(const QString &member, const QVariantList &arguments) const;
    void tryToConnect();
    void disconnectFromBus();

    QDBusConnection m_connection;
    QString m_address; ///< The present connection's.
    QTimer m_retry;
};

/// Whether an error means that nobody has answered: there is no bus any more, or no answer has come in time.
[[nodiscard]] bool isUnanswered(QDBusError::ErrorType error);

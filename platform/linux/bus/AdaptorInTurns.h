#pragma once

#include "platform/linux/bus/ObjectInTurns.h"

#include <QDBusAbstractAdaptor>
#include <QMetaMethod>
#include <QString>
#include <QVariantList>

#include <functional>

/// Serves the methods and properties of an adaptor, which is made from the description of a contract, in turns. Qt, if
/// the adaptor were left to it, would carry all out at once that has come. Main thread only.
class AdaptorInTurns final : public ObjectInTurns
{
public:
    /// Says why the call that has just been carried out is refused, and forgets it; empty when it is not.
    using Refusal = std::function<QString()>;

    /// `adaptor` must outlive this object.
    explicit AdaptorInTurns(QDBusAbstractAdaptor &adaptor, Refusal takeRefusal = {});
    ~AdaptorInTurns() override;
    AdaptorInTurns(const AdaptorInTurns &) = delete;
    AdaptorInTurns &operator=(const AdaptorInTurns &) = delete;

    /// From now on at this path of this connection, and of no other. False when something else is there.
    bool serve(const QDBusConnection &connection, const QString &path);
    void stopServing();
    /// Sends a signal of the contract from there; nothing is sent while there is no such place.
    void send(const QString &signal, const QVariantList &arguments = {});

private:
    [[nodiscard]] WorkInTurns::Work workFor(const QDBusMessage &call, const QDBusConnection &connection) override;
    [[nodiscard]] WorkInTurns::Work workForProperties(const QDBusMessage &call,
                                                      const QDBusConnection &connection) override;
    void carryOut(const QMetaMethod &method, const QDBusMessage &call, const QDBusConnection &connection) const;
    void tellProperty(const QDBusMessage &call, const QDBusConnection &connection) const;
    void tellProperties(const QDBusMessage &call, const QDBusConnection &connection) const;

    QDBusAbstractAdaptor &m_adaptor;
    const Refusal m_takeRefusal;
    QDBusConnection m_connection;
    QString m_path; ///< Empty while nothing is served.
};

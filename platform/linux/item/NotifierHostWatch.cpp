#include "platform/linux/item/NotifierHostWatch.h"

#include "platform/LogCategories.h"
#include "platform/linux/item/DisplayMembership.h"
#include "platform/linux/item/NotifierWatcher.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <algorithm>

NotifierHostWatch::NotifierHostWatch(SessionBus &bus)
    : m_bus(bus)
{
    connect(&m_bus, &SessionBus::connected, this, &NotifierHostWatch::watchBus);
    connect(&m_bus, &SessionBus::disconnected, this, &NotifierHostWatch::leaveBus);
    watchBus();
}

NotifierHostWatch::~NotifierHostWatch()
{
    hearOfHosts(false);
}

void NotifierHostWatch::watchBus()
{
    if (!m_bus.isConnected()) {
        return;
    }
    m_busWatcher = std::make_unique<QDBusServiceWatcher>(notifierWatcherName(), m_bus.connection(),
                                                         QDBusServiceWatcher::WatchForOwnerChange);
    connect(m_busWatcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) { follow(owner); });
    follow(m_bus.ownerOf(notifierWatcherName()));
}

void NotifierHostWatch::leaveBus()
{
    m_busWatcher.reset();
    follow(QString());
}

void NotifierHostWatch::follow(const QString &owner)
{
    if (owner == m_owner) {
        return;
    }
    hearOfHosts(false);
    m_owner = owner;
    hearOfHosts(true);
    m_question.reset();
    if (m_owner.isEmpty()) {
        qCDebug(itemLog, "there is no StatusNotifierItem watcher");
        m_watcher.clear();
        QMetaObject::invokeMethod(this, &NotifierHostWatch::changed, Qt::QueuedConnection);
    } else {
        ask();
    }
}

void NotifierHostWatch::hearOfHosts(bool hear)
{
    if (m_owner.isEmpty()) {
        return;
    }
    QDBusConnection connection = m_bus.connection();
    for (const char *change : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        // QtDBus knows no other way to name a slot than by a string.
        if (hear) {
            connection.connect(m_owner, notifierWatcherPath(), notifierWatcherName(), QLatin1String(change), this,
                               SLOT(ask()));
        } else {
            connection.disconnect(m_owner, notifierWatcherPath(), notifierWatcherName(), QLatin1String(change), this,
                                  SLOT(ask()));
        }
    }
}

void NotifierHostWatch::ask()
{
    QDBusMessage question = QDBusMessage::createMethodCall(
        m_owner, notifierWatcherPath(), QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    question.setAutoStartService(false);
    question.setArguments({notifierWatcherName(), QStringLiteral("IsStatusNotifierHostRegistered")});
    m_question = std::make_unique<QDBusPendingCallWatcher>(m_bus.connection().asyncCall(question));
    connect(m_question.get(), &QDBusPendingCallWatcher::finished, this, &NotifierHostWatch::hearAnswer);
}

void NotifierHostWatch::hearAnswer()
{
    const QDBusPendingReply<QDBusVariant> answer = *m_question;
    m_question.release()->deleteLater();
    const bool hasHost = answer.isValid() && answer.value().variant().toBool();
    const bool counts = hasHost && isForThisDisplay();
    qCDebug(itemLog, "the StatusNotifierItem watcher %s %s", qPrintable(m_owner),
            counts             ? "has a host on this display"
            : hasHost          ? "has hosts on other displays only"
            : answer.isValid() ? "has no host"
                               : "does not say whether it has a host");
    m_watcher = counts ? m_owner : QString();
    Q_EMIT changed();
}

bool NotifierHostWatch::isForThisDisplay() const
{
    const auto isOurs = [this](const QString &name) {
        const qint64 pid = m_bus.processOf(name).value_or(0);
        return pid != 0 && isOfThisDisplay(static_cast<pid_t>(pid));
    };
    if (isOurs(m_owner)) {
        return true;
    }
    // One watcher may serve the hosts of several displays; their names begin so by agreement.
    const QStringList names = m_bus.names();
    return std::any_of(names.cbegin(), names.cend(), [&](const QString &name) {
        return name.startsWith(QStringLiteral("org.kde.StatusNotifierHost")) && isOurs(name);
    });
}

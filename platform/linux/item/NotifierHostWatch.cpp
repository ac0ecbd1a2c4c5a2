#include "platform/linux/item/NotifierHostWatch.h"

#include "platform/LogCategories.h"
#include "platform/linux/item/NotifierWatcher.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <chrono>
#include <vector>

namespace
{

/// The names of hosts begin so by agreement.
bool isNameOfHost(const QString &name)
{
    return name.startsWith(QStringLiteral("org.kde.StatusNotifierHost"));
}

} // namespace

NotifierHostWatch::NotifierHostWatch(SessionBus &bus)
    : m_bus(bus)
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(std::chrono::seconds(5));
    connect(&m_retry, &QTimer::timeout, this, &NotifierHostWatch::ask);
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
    // Not every watcher tells of each host.
    m_hostWatcher = std::make_unique<QDBusServiceWatcher>(QStringLiteral("org.kde*"), m_bus.connection(),
                                                          QDBusServiceWatcher::WatchForOwnerChange);
    connect(m_hostWatcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this, [this](const QString &name) {
        if (isNameOfHost(name) && !m_owner.isEmpty()) {
            ask();
        }
    });
    follow(m_bus.ownerOf(notifierWatcherName()));
}

void NotifierHostWatch::leaveBus()
{
    m_busWatcher.reset();
    m_hostWatcher.reset();
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
    m_retry.stop();
    m_question.reset();
    if (m_owner.isEmpty()) {
        qCDebug(itemLog, "there is no StatusNotifierItem watcher");
        m_watcher.clear();
        m_isShared = false;
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

void NotifierHostWatch::askAgainLater()
{
    m_watcher.clear();
    m_retry.start();
}

void NotifierHostWatch::ask()
{
    m_retry.stop();
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
    if (answer.isError() && isUnanswered(answer.error().type())) {
        m_retry.start(); // A bus that stalls may go on one day.
    }
    const bool hasHost = answer.isValid() && answer.value().variant().toBool();
    const DisplayMembership whose = hasHost ? membership() : DisplayMembership::Unknown;
    m_watcher = whose == DisplayMembership::OfThis ? m_owner : QString();
    m_isShared = whose == DisplayMembership::OfAnother;
    qCDebug(itemLog, "the StatusNotifierItem watcher %s %s", qPrintable(m_owner),
            m_isShared            ? "has a host on another display"
            : !m_watcher.isNull() ? "has a host on this display"
            : hasHost             ? "has a host, on a display that cannot be told"
            : answer.isValid()    ? "has no host"
                                  : "does not say whether it has a host");
    Q_EMIT changed();
}

DisplayMembership NotifierHostWatch::membership() const
{
    const auto of = [this](const QString &name) {
        const qint64 pid = m_bus.processOf(name).value_or(0);
        return pid == 0 ? DisplayMembership::Unknown : membershipOf(static_cast<pid_t>(pid));
    };
    std::vector<DisplayMembership> each{of(m_owner)};
    const QStringList names = m_bus.names();
    for (const QString &name : names) {
        if (isNameOfHost(name)) {
            each.push_back(of(name));
        }
    }
    return membershipOfAll(each);
}

NotifierHosts NotifierHostWatch::hosts() const noexcept
{
    if (!m_watcher.isEmpty()) {
        return NotifierHosts::Ours;
    }
    return m_isShared ? NotifierHosts::Shared : NotifierHosts::None;
}

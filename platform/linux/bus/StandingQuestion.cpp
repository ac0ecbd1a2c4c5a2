#include "platform/linux/bus/StandingQuestion.h"

#include <utility>

StandingQuestion::StandingQuestion(SessionBus &bus, const QDBusMessage &question, News news)
    : m_bus(bus)
    , m_question(question)
    , m_news(std::move(news))
{
    connect(&m_bus, &SessionBus::connected, this, &StandingQuestion::watchBus);
    connect(&m_bus, &SessionBus::disconnected, this, &StandingQuestion::leaveBus);
    watchBus();
}

void StandingQuestion::watchBus()
{
    if (!m_bus.isConnected()) {
        return;
    }
    const QString name = m_question.service();
    m_watcher =
        std::make_unique<QDBusServiceWatcher>(name, m_bus.connection(), QDBusServiceWatcher::WatchForOwnerChange);
    connect(m_watcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) {
                m_newOwner = owner;
                ask();
            });
    QDBusMessage whose =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    whose.setArguments({name});
    send(whose, &StandingQuestion::hearOwner);
}

void StandingQuestion::leaveBus()
{
    m_watcher.reset();
    m_waiting.reset();
    m_isOutOfDate = false;
    m_newOwner.clear();
    m_owner.clear();
}

void StandingQuestion::send(const QDBusMessage &question, Handler handler)
{
    m_waiting = std::make_unique<QDBusPendingCallWatcher>(m_bus.connection().asyncCall(question));
    connect(m_waiting.get(), &QDBusPendingCallWatcher::finished, this, [this, handler] {
        const QDBusMessage answer = m_waiting->reply();
        m_waiting.release()->deleteLater();
        (this->*handler)(answer);
    });
}

void StandingQuestion::hearOwner(const QDBusMessage &answer)
{
    // Qt may tell of an answer after a signal that the bus has sent behind it: what the watcher has said is newer.
    if (!std::exchange(m_isOutOfDate, false)) {
        m_newOwner = answer.type() == QDBusMessage::ReplyMessage ? answer.arguments().value(0).toString() : QString();
    }
    ask();
}

void StandingQuestion::ask()
{
    if (m_waiting) {
        m_isOutOfDate = true;
        return;
    }
    follow(m_newOwner);
    if (m_owner.isEmpty()) {
        Q_EMIT answered({});
        return;
    }
    // To the owner itself, which starts nobody.
    QDBusMessage question =
        QDBusMessage::createMethodCall(m_owner, m_question.path(), m_question.interface(), m_question.member());
    question.setArguments(m_question.arguments());
    send(question, &StandingQuestion::hearAnswer);
}

void StandingQuestion::hearAnswer(const QDBusMessage &answer)
{
    Q_EMIT answered(answer);
    if (std::exchange(m_isOutOfDate, false)) {
        ask();
    }
}

void StandingQuestion::follow(const QString &owner)
{
    if (owner == m_owner) {
        return;
    }
    // Of the unique name: for a well-known one Qt would wait for the bus to say whose it is. QtDBus knows no other way
    // to name a slot than by a string.
    QDBusConnection connection = m_bus.connection();
    if (!m_owner.isEmpty()) {
        connection.disconnect(m_owner, m_question.path(), m_news.interface, m_news.member, m_news.arguments, QString(),
                              this, SLOT(ask()));
    }
    m_owner = owner;
    if (!m_owner.isEmpty()) {
        connection.connect(m_owner, m_question.path(), m_news.interface, m_news.member, m_news.arguments, QString(),
                           this, SLOT(ask()));
    }
}

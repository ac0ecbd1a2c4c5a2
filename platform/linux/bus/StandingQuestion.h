#pragma once

#include "platform/linux/include/SessionBus.h"

#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QObject>

#include <memory>

/// A question to a service of the session bus that is asked again whenever its answer may be another: when the service
/// comes, is replaced or goes, when it says that something has changed, and when the bus is back. Never starts the
/// service, waits for no answer, and listens to nobody but the name's owner. However often there is news, one question
/// waits at a time, and one more is asked after its answer. Main thread only.
class StandingQuestion final : public QObject
{
    Q_OBJECT

public:
    /// The signal by which the service says that something has changed. With these as its first arguments, when there
    /// are any.
    struct News {
        QString interface;
        QString member;
        QStringList arguments = {};
    };

    /// `question` is a call; its destination is a well-known name, and its object sends the news. `bus` must outlive
    /// this object. The first answer comes from the event loop.
    StandingQuestion(SessionBus &bus, const QDBusMessage &question, News news);

Q_SIGNALS:
    /// The present answer, or error. No reply either when nobody owns the name. Nothing is told when the bus goes.
    void answered(const QDBusMessage &answer);

private Q_SLOTS:
    void ask();

private:
    using Handler = void (StandingQuestion::*)(const QDBusMessage &answer);

    void watchBus();
    void leaveBus();
    void send(const QDBusMessage &question, Handler handler);
    void hearOwner(const QDBusMessage &answer);
    void hearAnswer(const QDBusMessage &answer);
    void follow(const QString &owner);

    SessionBus &m_bus;
    const QDBusMessage m_question;
    const News m_news;
    std::unique_ptr<QDBusServiceWatcher> m_watcher;
    std::unique_ptr<QDBusPendingCallWatcher> m_waiting; ///< The question that waits for its answer.
    bool m_isOutOfDate = false;                         ///< There was news meanwhile.
    QString m_newOwner;                                 ///< The name's owner, by the last that was heard.
    QString m_owner;                                    ///< The one whose news is heard.
};

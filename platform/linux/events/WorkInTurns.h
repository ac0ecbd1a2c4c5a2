#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <QString>

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <optional>

/// Carries out work for other programs: at once while there is little of it, and spread over iterations of the event
/// loop (its turns, here) when there is much. Qt hands over all messages that have come since it last looked in one go,
/// which in a flood of them takes seconds, and the user's clicks would wait as long. Main thread only.
class WorkInTurns final : public QObject
{
    Q_OBJECT

public:
    using Work = std::function<void()>;

    /// What comes next waits once this much of a turn is used up.
    static constexpr std::chrono::milliseconds kShareOfATurn{5};
    /// More pieces than that do not wait for one client, so that a flood does not take all memory: several times the
    /// longest burst that a client has reason for.
    static constexpr std::size_t kMaxWaiting = 100'000;

    explicit WorkInTurns(std::chrono::milliseconds shareOfATurn = kShareOfATurn, std::size_t maxWaiting = kMaxWaiting);

    /// Before it returns, or in a later turn when other work waits or this turn's share is used up. Work for one client
    /// is carried out in its order; clients with work that waits take turns, so that none waits for all of another's.
    /// `work` may run an event loop of its own, in which what waits goes on, and must not throw. False, and `work` is
    /// dropped, when the most that may wait for this client waits already.
    [[nodiscard]] bool carryOut(const QString &client, Work work);

private:
    void startTurn(QDeadlineTimer share);
    void nextTurn();
    [[nodiscard]] Work takeNext();

    std::chrono::milliseconds m_shareOfATurn;
    std::size_t m_maxWaiting;
    std::map<QString, std::deque<Work>> m_waiting; ///< While there is any, the next turn is sure to come.
    std::deque<QString> m_clients;                 ///< Those with work that waits, the next one first.
    std::optional<QDeadlineTimer> m_share; ///< What is left of this turn; nothing before its first work is done.
};

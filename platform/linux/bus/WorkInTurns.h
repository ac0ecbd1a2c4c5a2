#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <QString>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <optional>

/// Carries out work for other programs: at once while there is little of it, and spread over several event loop
/// iterations ("turns" here) when there is much. Qt delivers all messages that wait in one iteration. In a flood of
/// messages that lasts for seconds, and the user's clicks would wait as long. Main thread only.
class WorkInTurns final : public QObject
{
    Q_OBJECT

public:
    using Work = std::function<void()>;

    /// Once work has used up this much of a turn, the rest waits for the next one.
    static constexpr std::chrono::milliseconds defaultMaxShareOfATurn{5};
    /// A client for whom more pieces of work wait than this comes behind all others. It is several times as much as a
    /// client sends that does not flood.
    static constexpr std::size_t maxInOrder = 1000;
    /// For one client no more pieces wait than this, so that a flood does not use up the memory.
    static constexpr std::size_t defaultMaxWaiting = 100'000;

    explicit WorkInTurns(std::chrono::milliseconds shareOfATurn = defaultMaxShareOfATurn,
                         std::size_t maxWaiting = defaultMaxWaiting);

    /// Before it returns, or in a later turn when other work waits or this turn's share is used up. Work is carried out
    /// in the order in which it came, whoever it is for; only that of a client for whom more than maxInOrder pieces
    /// wait comes behind all other until they have become fewer. Work for one client keeps its order in any case.
    /// `work` may run an event loop of its own, in which what waits goes on, and must not throw. False, and `work` is
    /// dropped, when the most that may wait for this client waits already.
    [[nodiscard]] bool carryOut(const QString &client, Work work);

private:
    struct Piece {
        std::uint64_t number; ///< In the order in which all have come.
        Work work;
    };
    /// Clients, by the number of the first piece that waits for them.
    using Order = std::map<std::uint64_t, QString>;

    void startTurn(QDeadlineTimer share);
    void nextTurn();
    [[nodiscard]] Work takeNext();
    [[nodiscard]] Order &orderOfWhoHas(std::size_t waiting);

    std::chrono::milliseconds m_shareOfATurn;
    std::size_t m_maxWaiting;
    std::uint64_t m_pieces = 0;
    std::map<QString, std::deque<Piece>> m_waiting; ///< While there is any, the next turn is sure to come.
    Order m_next;
    Order m_flooding;                      ///< Those for whom too much waits.
    std::optional<QDeadlineTimer> m_share; ///< What is left of this turn; nothing before its first work is done.
};

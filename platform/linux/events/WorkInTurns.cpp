#include "platform/linux/events/WorkInTurns.h"

#include <utility>

WorkInTurns::WorkInTurns(std::chrono::milliseconds shareOfATurn, std::size_t maxWaiting)
    : m_shareOfATurn(shareOfATurn)
    , m_maxWaiting(maxWaiting)
{
}

bool WorkInTurns::carryOut(const QString &client, Work work)
{
    if (!m_share) {
        // The turn is announced after its first work, which need not wait for that.
        const QDeadlineTimer share(m_shareOfATurn, Qt::PreciseTimer);
        work();
        if (!m_share) {
            startTurn(share);
        }
        return true;
    }
    if (m_clients.empty() && !m_share->hasExpired()) {
        work();
        return true;
    }
    std::deque<Work> &waiting = m_waiting[client];
    if (waiting.size() >= m_maxWaiting) {
        return false;
    }
    if (waiting.empty()) {
        m_clients.push_back(client);
    }
    waiting.push_back(std::move(work));
    return true;
}

void WorkInTurns::startTurn(QDeadlineTimer share)
{
    m_share = share;
    // What is posted now comes after whatever else the loop has to do.
    QMetaObject::invokeMethod(this, &WorkInTurns::nextTurn, Qt::QueuedConnection);
}

void WorkInTurns::nextTurn()
{
    m_share.reset();
    if (!m_clients.empty()) {
        startTurn(QDeadlineTimer(m_shareOfATurn, Qt::PreciseTimer));
    }
    // Work with a loop of its own may have come through here when it returns, and may have left nothing to do.
    while (!m_clients.empty() && !m_share->hasExpired()) {
        const Work work = takeNext();
        work();
    }
}

WorkInTurns::Work WorkInTurns::takeNext()
{
    const QString client = std::move(m_clients.front());
    m_clients.pop_front();
    const auto waiting = m_waiting.find(client);
    Work work = std::move(waiting->second.front());
    waiting->second.pop_front();
    if (waiting->second.empty()) {
        m_waiting.erase(waiting);
    } else {
        m_clients.push_back(client);
    }
    return work;
}

#include "platform/linux/bus/WorkInTurns.h"

#include "platform/LogCategories.h"

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
    if (m_waiting.empty() && !m_share->hasExpired()) {
        work();
        return true;
    }
    const auto entry = m_waiting.find(client);
    const std::size_t waiting = entry == m_waiting.end() ? 0 : entry->second.size();
    if (waiting >= m_maxWaiting) {
        return false;
    }
    if (waiting == maxInOrder) {
        qCDebug(linkLog) << "more than" << maxInOrder << "events of" << client << "wait: the others come first";
    }
    std::deque<Piece> &pieces = m_waiting[client];
    pieces.push_back({m_pieces++, std::move(work)});
    const std::uint64_t first = pieces.front().number;
    orderOfWhoHas(waiting).erase(first);
    orderOfWhoHas(waiting + 1).emplace(first, client);
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
    if (!m_waiting.empty()) {
        startTurn(QDeadlineTimer(m_shareOfATurn, Qt::PreciseTimer));
    }
    // Work with a loop of its own may have come through here when it returns, and may have left nothing to do.
    while (!m_waiting.empty() && !m_share->hasExpired()) {
        const Work work = takeNext();
        work();
    }
}

WorkInTurns::Work WorkInTurns::takeNext()
{
    Order &order = m_next.empty() ? m_flooding : m_next;
    const QString client = std::move(order.begin()->second);
    order.erase(order.begin());
    const auto waiting = m_waiting.find(client);
    std::deque<Piece> &pieces = waiting->second;
    Work work = std::move(pieces.front().work);
    pieces.pop_front();
    if (pieces.empty()) {
        m_waiting.erase(waiting);
    } else {
        orderOfWhoHas(pieces.size()).emplace(pieces.front().number, client);
    }
    return work;
}

WorkInTurns::Order &WorkInTurns::orderOfWhoHas(std::size_t waiting)
{
    return waiting > maxInOrder ? m_flooding : m_next;
}

#pragma once

#include <QDBusServiceWatcher>
#include <QHash>
#include <QObject>
#include <QSet>

#include <optional>

class SessionBus;

/// The processes behind the unique names of a bus. The bus is asked once for each name, and the answer is kept until
/// the name is unowned. A bus never gives out the same unique name twice, so what is kept is always right, also of
/// names that have gone.
///
/// Only the names asked about are watched: to watch all would wake this process for every program that starts or ends.
/// Main thread only.
class PeerProcesses final : public QObject
{
    Q_OBJECT

public:
    /// `bus` must outlive this object.
    explicit PeerProcesses(const SessionBus &bus);

    /// 0 when the name has gone, none when the bus does not say. Blocks for at most 500 ms the first time.
    [[nodiscard]] std::optional<qint64> processOf(const QString &uniqueName);
    /// What is remembered of it; asks nobody.
    [[nodiscard]] std::optional<qint64> knownProcessOf(const QString &uniqueName) const;
    /// How many names are remembered.
    [[nodiscard]] qsizetype count() const { return m_known.size(); }

private:
    void startAnew();
    void forget(const QString &uniqueName);

    const SessionBus &m_bus;
    QDBusServiceWatcher m_watcher;
    QHash<QString, qint64> m_known;
    QSet<QString> m_gone; ///< The latest of them.
};

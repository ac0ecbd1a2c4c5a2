#pragma once

#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <chrono>

/// The clock of an agent that lives through hours in a moment: both the time of day and every timer that runs.
class AgentClock final
{
public:
    AgentClock();

    /// Makes it the clock of whoever is started with this environment.
    void addTo(QProcessEnvironment &environment) const;
    /// Lets that much more time pass. Each timer that is due by then fires, a repeating one once.
    void advance(std::chrono::milliseconds time);
    /// From now on no time passes but what advance() says.
    void stop();

private:
    [[nodiscard]] QString path() const;
    void set(qsizetype index, qint64 nanoseconds);

    QTemporaryDir m_directory;
    std::chrono::nanoseconds m_shift{0};
};

#include "tests/session/support/AgentClock.h"

#include <QFile>

#include <gtest/gtest.h>

AgentClock::AgentClock()
{
    QFile file(path());
    const QByteArray none(2 * sizeof(qint64), '\0');
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(none) == none.size());
}

QString AgentClock::path() const
{
    return m_directory.filePath(QStringLiteral("clock"));
}

void AgentClock::addTo(QProcessEnvironment &environment) const
{
    environment.insert(QStringLiteral("LD_PRELOAD"), QStringLiteral(KIV_SHIFTED_CLOCK));
    environment.insert(QStringLiteral("KIV_CLOCK_FILE"), path());
}

void AgentClock::advance(std::chrono::milliseconds time)
{
    m_shift += time;
    set(0, m_shift.count());
}

void AgentClock::stop()
{
    // That of the C++ library is CLOCK_MONOTONIC.
    set(1, std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count());
}

void AgentClock::set(qsizetype index, qint64 nanoseconds)
{
    QFile file(path());
    EXPECT_TRUE(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) &&
                file.seek(index * static_cast<qsizetype>(sizeof nanoseconds)) &&
                file.write(reinterpret_cast<const char *>(&nanoseconds), sizeof nanoseconds) == sizeof nanoseconds);
}

#include "AgentClock.h"

#include <QFile>

#include <gtest/gtest.h>

AgentClock::AgentClock()
{
    QFile file(path());
    const qint64 none = 0;
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) &&
                file.write(reinterpret_cast<const char *>(&none), sizeof none) == sizeof none);
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

void AgentClock::advance(std::chrono::seconds time)
{
    m_shift += time;
    const qint64 shift = m_shift.count();
    QFile file(path());
    EXPECT_TRUE(file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) &&
                file.write(reinterpret_cast<const char *>(&shift), sizeof shift) == sizeof shift);
}

QDateTime AgentClock::now() const
{
    return QDateTime::currentDateTimeUtc().addMSecs(
        std::chrono::duration_cast<std::chrono::milliseconds>(m_shift).count());
}

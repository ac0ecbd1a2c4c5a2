#include "tests/support/PrivateBus.h"

#include "tests/support/WaitUntil.h"

#include <QFile>

#include <gtest/gtest.h>

#include <csignal>

PrivateBus::PrivateBus() = default;

bool PrivateBus::start()
{
    stop();
    const bool started = m_daemon.start(QStringLiteral("dbus-daemon"),
                                        {QStringLiteral("--session"), QStringLiteral("--nofork"),
                                         QStringLiteral("--print-address"), QStringLiteral("--address=") + address()});
    const bool listens = started && waitUntil([this] { return m_daemon.output().contains('\n'); });
    EXPECT_TRUE(listens) << "dbus-daemon did not start";
    return listens;
}

void PrivateBus::stop()
{
    m_daemon.kill();
    QFile::remove(m_directory.filePath(QStringLiteral("bus")));
}

void PrivateBus::suspend()
{
    EXPECT_EQ(::kill(static_cast<pid_t>(m_daemon.pid()), SIGSTOP), 0);
}

void PrivateBus::resume()
{
    EXPECT_EQ(::kill(static_cast<pid_t>(m_daemon.pid()), SIGCONT), 0);
}

QString PrivateBus::address() const
{
    return QStringLiteral("unix:path=") + m_directory.filePath(QStringLiteral("bus"));
}

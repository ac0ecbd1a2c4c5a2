#include "tests/support/PrivateBus.h"

#include "tests/support/WaitUntil.h"

#include <QFile>

#include <gtest/gtest.h>

#include <csignal>

PrivateBus::PrivateBus(const QString &folder)
    : m_folder(folder.isEmpty() ? m_directory.path() : folder)
{
}

bool PrivateBus::start()
{
    stop();
    const bool started = m_daemon.start(QStringLiteral(KIV_PRIVATE_DESKTOP), {QStringLiteral("bus"), m_folder});
    const bool listens = started && waitUntil([this] { return m_daemon.output().contains('\n'); });
    EXPECT_TRUE(listens) << "dbus-daemon did not start";
    return listens;
}

void PrivateBus::stop()
{
    m_daemon.kill();
    QFile::remove(m_folder + QStringLiteral("/bus"));
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
    return QStringLiteral("unix:path=%1/bus").arg(m_folder);
}

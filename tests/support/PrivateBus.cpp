#include "PrivateBus.h"

#include "tests/support/WaitUntil.h"

#include <QFile>

#include <gtest/gtest.h>

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

QString PrivateBus::address() const
{
    return QStringLiteral("unix:path=") + m_directory.filePath(QStringLiteral("bus"));
}

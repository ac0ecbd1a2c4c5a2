#pragma once

#include "tests/support/ChildProcess.h"
#include "tests/support/WaitUntil.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// A bus that has room for one connection, at an address of its own unless it is told which.
class BusForOne final
{
public:
    explicit BusForOne(const QString &at = {})
        : m_address(at.isEmpty() ? "unix:path=" + m_folder.filePath(QStringLiteral("bus")).toLatin1() : at.toLatin1())
    {
        const QString configuration = m_folder.filePath(QStringLiteral("bus.conf"));
        QFile file(configuration);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("<busconfig><type>session</type><listen>" + address() +
                   "</listen><policy context=\"default\"><allow send_destination=\"*\"/><allow "
                   "receive_sender=\"*\"/><allow own=\"*\"/></policy>"
                   "<limit name=\"max_completed_connections\">1</limit></busconfig>");
        file.close();
        EXPECT_TRUE(m_daemon.start(QStringLiteral("dbus-daemon"),
                                   {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                                    QStringLiteral("--config-file=") + configuration}));
        m_isRunning = waitUntil([this] { return m_daemon.output().contains('\n'); });
    }

    [[nodiscard]] bool isRunning() const { return m_isRunning; }
    [[nodiscard]] QByteArray address() const { return m_address; }

private:
    QTemporaryDir m_folder;
    const QByteArray m_address;
    ChildProcess m_daemon;
    bool m_isRunning = false;
};

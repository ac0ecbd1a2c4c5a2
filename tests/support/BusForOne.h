#pragma once

#include "tests/support/ChildProcess.h"
#include "tests/support/WaitUntil.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

/// A bus that has room for one connection.
class BusForOne final
{
public:
    BusForOne()
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
    [[nodiscard]] QByteArray address() const
    {
        return "unix:path=" + m_folder.filePath(QStringLiteral("bus")).toLatin1();
    }

private:
    QTemporaryDir m_folder;
    ChildProcess m_daemon;
    bool m_isRunning = false;
};

#include "tests/support/PrivateXServer.h"

#include <QDeadlineTimer>

#include <gtest/gtest.h>

#include <chrono>

PrivateXServer::PrivateXServer(const QString &folder)
    : m_folder(folder.isEmpty() ? m_directory.path() : folder)
{
}

bool PrivateXServer::start(const QStringList &arguments)
{
    return startPart(QStringLiteral("server"), arguments);
}

bool PrivateXServer::startWithSeveralRates(const QStringList &arguments)
{
    return startPart(QStringLiteral("server-with-rates"), arguments);
}

bool PrivateXServer::startPart(const QString &part, const QStringList &arguments)
{
    stop();
    const bool started = m_server.start(QStringLiteral(KIV_PRIVATE_DESKTOP), QStringList{part, m_folder} + arguments);
    // Without the event loop: the server may be wanted before there is an application object.
    QDeadlineTimer deadline(std::chrono::seconds(10));
    while (started && !m_server.output().contains('\n')) {
        if (!m_server.process().waitForReadyRead(static_cast<int>(deadline.remainingTime()))) {
            break;
        }
    }
    const bool ready = m_server.output().contains('\n');
    EXPECT_TRUE(ready) << "the X server did not start";
    m_display = QLatin1Char(':') + QString::fromLatin1(m_server.output().trimmed());
    return ready;
}

void PrivateXServer::stop()
{
    m_server.kill();
    m_display.clear();
}

QString PrivateXServer::display() const
{
    return m_display;
}

QString PrivateXServer::authority() const
{
    return m_folder + QStringLiteral("/authority");
}

QString PrivateXServer::rfbSocket() const
{
    return m_folder + QStringLiteral("/rfb");
}

#include "notify/feed/FeedConnection.h"

#include "platform/LogCategories.h"

#include <csignal>
#include <utility>

namespace
{

/// How long the event loop may stand still for a process that was killed.
constexpr int endTimeout = 1000; // milliseconds

/// At the end of a session, or by Ctrl-C, it may get the signal before its agent does.
bool wasAskedToEnd(int signal)
{
    return signal == SIGTERM || signal == SIGINT || signal == SIGHUP || signal == SIGQUIT;
}

} // namespace

FeedConnection::FeedConnection(QString program, QUrl address, Limits limits, QObject *parent)
    : QObject(parent)
    , m_program(std::move(program))
    , m_address(std::move(address))
    , m_limits(limits)
{
    m_end.setSingleShot(true);
    m_end.callOnTimeout(this, [this] {
        qCDebug(feedLog, "kivfetch does not end by itself: it is killed");
        fail();
    });
    m_process->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    connect(m_process.get(), &QProcess::readyReadStandardOutput, this, &FeedConnection::read);
    connect(m_process.get(), &QProcess::finished, this, [this](int exitCode, QProcess::ExitStatus status) {
        if (status == QProcess::CrashExit && !wasAskedToEnd(exitCode)) { // Then it is the signal's number.
            qCWarning(feedLog, "kivfetch has crashed");
        }
        finish(status == QProcess::NormalExit && exitCode == 0 ? End::Complete : End::Failed);
    });
    connect(m_process.get(), &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            qCWarning(feedLog, "cannot run kivfetch: %s", qPrintable(m_process->errorString()));
            finish(End::Failed);
        }
    });
}

FeedConnection::~FeedConnection()
{
    cancel();
    m_process->waitForFinished(endTimeout); // It was killed if it was running.
    if (m_process->state() != QProcess::NotRunning) {
        // It hangs in a call of the kernel, and its object would wait for it another half a minute.
        QProcess *const process = m_process.release();
        connect(process, &QProcess::finished, process, &QObject::deleteLater);
    }
}

void FeedConnection::start()
{
    QStringList arguments{QString::fromLatin1(m_address.toEncoded()), QString::number(m_limits.silence.count())};
    if (feedLog().isDebugEnabled()) {
        arguments.prepend(QStringLiteral("-v"));
    }
    m_end.start(m_limits.whole);
    m_process->start(m_program, arguments);
}

void FeedConnection::cancel()
{
    m_isFinished = true;
    m_end.stop();
    m_process->disconnect(this);
    m_process->kill();
}

void FeedConnection::read()
{
    if (!m_hasResponse && m_process->canReadLine()) {
        readResponse();
    }
    if (m_hasResponse && !m_isFinished && m_process->bytesAvailable() > 0) {
        Q_EMIT receivedData(m_process->readAllStandardOutput());
    }
}

void FeedConnection::readResponse()
{
    m_hasResponse = true;
    const QByteArray line = m_process->readLine().chopped(1);
    const qsizetype blank = line.indexOf(' ');
    if (blank < 0) {
        qCDebug(feedLog, "what was run is not kivfetch: its first line has no status");
        fail(); // Whatever that is, it is not kivfetch.
        return;
    }
    Q_EMIT receivedResponse(line.first(blank).toInt(), line.mid(blank + 1));
}

void FeedConnection::fail()
{
    cancel();
    finish(End::Failed);
}

void FeedConnection::finish(End end)
{
    m_isFinished = true;
    m_end.stop();
    Q_EMIT ended(end);
}

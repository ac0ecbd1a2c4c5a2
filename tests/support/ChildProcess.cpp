#include "tests/support/ChildProcess.h"

#ifdef Q_OS_LINUX
#include <csignal>
#include <sys/prctl.h>
#endif

ChildProcess::ChildProcess()
    : environment(QProcessEnvironment::systemEnvironment())
{
    m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
#ifdef Q_OS_LINUX
    m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
#endif
}

ChildProcess::~ChildProcess()
{
    kill();
}

bool ChildProcess::start(const QString &program, const QStringList &arguments)
{
    if (isRunning()) {
        return false;
    }
    m_output.clear();
    m_process.setProcessEnvironment(environment);
    m_process.start(program, arguments);
    return m_process.waitForStarted();
}

bool ChildProcess::isRunning() const
{
    return m_process.state() != QProcess::NotRunning;
}

qint64 ChildProcess::pid() const
{
    return m_process.processId();
}

int ChildProcess::exitCode() const
{
    return !isRunning() && m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

void ChildProcess::terminate()
{
    m_process.terminate();
}

void ChildProcess::kill()
{
    if (isRunning()) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

void ChildProcess::write(const QByteArray &bytes)
{
    m_process.write(bytes);
    m_process.waitForBytesWritten();
}

void ChildProcess::closeInput()
{
    m_process.closeWriteChannel();
}

QByteArray ChildProcess::output()
{
    m_output += m_process.readAllStandardOutput();
    return m_output;
}

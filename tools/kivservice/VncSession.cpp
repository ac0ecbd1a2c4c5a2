#include "tools/kivservice/VncSession.h"

#include "menu/MenuEntries.h"

namespace
{
constexpr char failure[] = "cannot disconnect the viewers: ";
}

VncSession::VncSession(Reporter report)
    : m_report(std::move(report))
{
    m_vncconfig.setProcessChannelMode(QProcess::MergedChannels);
    m_vncconfig.setStandardInputFile(QProcess::nullDevice());
    connect(&m_vncconfig, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            m_report(QByteArray(failure) + "vncconfig (Debian package tigervnc-common) cannot be started");
        }
    });
    connect(&m_vncconfig, &QProcess::finished, this, [this](int exitCode, QProcess::ExitStatus status) {
        if (status == QProcess::NormalExit && exitCode == 0) {
            m_report("disconnected the viewers");
            return;
        }
        const QByteArray lastWords = m_vncconfig.readAll().simplified();
        m_report(failure + (lastWords.isEmpty() ? "vncconfig failed" : lastWords));
    });
}

VncSession::~VncSession()
{
    disconnect(&m_vncconfig, nullptr, this, nullptr);
    m_vncconfig.kill();
    m_vncconfig.waitForFinished();
}

void VncSession::carryOut(std::uint32_t code)
{
    if (code == kMenuCmdDisconnect) {
        dropViewers();
    } else {
        const QByteArray title = menuEntryTitle(code).toUtf8();
        m_report("not carried out: " + (title.isEmpty() ? QByteArray::number(code) : title) +
                 " (a VNC server cannot do this)");
    }
}

void VncSession::dropViewers()
{
    // While one runs, its end is this one's too: it drops all viewers there are.
    if (m_vncconfig.state() == QProcess::NotRunning) {
        m_vncconfig.start(QStringLiteral("vncconfig"), {QStringLiteral("-disconnect")});
    }
}

#include "tests/support/PrivateXServer.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QRandomGenerator>
#include <QtEndian>

#include <gtest/gtest.h>

#include <chrono>

namespace
{

/// One entry of an X authority file (Xau(3)) for every display of this host: family, then address, number, name and
/// data, each led by its length as a big-endian 16-bit number.
QByteArray authorityEntry(const QByteArray &cookie)
{
    const auto counted = [](const QByteArray &text) {
        QByteArray out(2, '\0');
        qToBigEndian(static_cast<quint16>(text.size()), out.data());
        return out + text;
    };
    constexpr char wildFamily[] = "\xff\xff";
    return QByteArray(wildFamily, 2) + counted({}) + counted({}) + counted("MIT-MAGIC-COOKIE-1") + counted(cookie);
}

} // namespace

bool PrivateXServer::start(QSize size, const QStringList &arguments)
{
    // -rfbport -1: no TCP port at all (0 would be a port on every interface).
    return startProgram(
        QStringLiteral("Xtigervnc"),
        QStringList{QStringLiteral("-SecurityTypes"), QStringLiteral("None"), QStringLiteral("-rfbport"),
                    QStringLiteral("-1"), QStringLiteral("-rfbunixpath"), rfbSocket(), QStringLiteral("-geometry"),
                    QStringLiteral("%1x%2").arg(size.width()).arg(size.height()), QStringLiteral("-depth"),
                    QStringLiteral("24"), QStringLiteral("-Log"), QStringLiteral("*:stderr:0")} +
            arguments);
}

bool PrivateXServer::startWithSeveralRates()
{
    // Without AutoAddDevices it would take the machine's own keyboard and mouse.
    constexpr char configuration[] = R"(
Section "ServerFlags"
    Option "AutoAddDevices" "false"
    Option "AutoAddGPU" "false"
EndSection
Section "Monitor"
    Identifier "Monitor"
    HorizSync 15-100
    VertRefresh 50-90
EndSection
Section "Device"
    Identifier "Device"
    Driver "dummy"
    VideoRam 65536
EndSection
Section "Screen"
    Identifier "Screen"
    Device "Device"
    Monitor "Monitor"
    DefaultDepth 24
    SubSection "Display"
        Depth 24
        Modes "1280x1024"
    EndSubSection
EndSection
)";
    QFile file(m_directory.filePath(QStringLiteral("xorg.conf")));
    if (!file.open(QIODevice::WriteOnly) || file.write(configuration) < 0) {
        ADD_FAILURE() << "cannot write " << qPrintable(file.fileName());
        return false;
    }
    file.close();
    return startProgram(QStringLiteral("Xorg"),
                        {QStringLiteral("-config"), file.fileName(), QStringLiteral("-logfile"),
                         m_directory.filePath(QStringLiteral("xorg.log")), QStringLiteral("-noreset"),
                         QStringLiteral("-novtswitch"), QStringLiteral("-sharevts"), QStringLiteral("vt7")});
}

bool PrivateXServer::startProgram(const QString &program, const QStringList &arguments)
{
    stop();
    QByteArray cookie(16, '\0');
    QRandomGenerator::system()->fillRange(reinterpret_cast<quint32 *>(cookie.data()), cookie.size() / 4);
    QFile file(authority());
    if (!file.open(QIODevice::WriteOnly) || file.write(authorityEntry(cookie)) < 0) {
        ADD_FAILURE() << "cannot write " << qPrintable(authority());
        return false;
    }
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    file.close();

    // -displayfd picks a free display and says which, on standard output.
    const bool started =
        m_server.start(program, QStringList{QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-auth"),
                                            authority(), QStringLiteral("-nolisten"), QStringLiteral("tcp")} +
                                    arguments);
    // Without the event loop: the server may be wanted before there is an application object.
    QDeadlineTimer limit(std::chrono::seconds(10));
    while (started && !m_server.output().contains('\n')) {
        if (!m_server.process().waitForReadyRead(static_cast<int>(limit.remainingTime()))) {
            break;
        }
    }
    const bool ready = m_server.output().contains('\n');
    EXPECT_TRUE(ready) << qPrintable(program) << " did not start";
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
    return m_directory.filePath(QStringLiteral("authority"));
}

QString PrivateXServer::rfbSocket() const
{
    return m_directory.filePath(QStringLiteral("rfb"));
}

void PrivateXServer::addTo(QProcessEnvironment &environment) const
{
    environment.insert(QStringLiteral("DISPLAY"), display());
    environment.insert(QStringLiteral("XAUTHORITY"), authority());
}

#include "PrivateXServer.h"

#include "tests/support/WaitUntil.h"

#include <QFile>
#include <QRandomGenerator>
#include <QtEndian>

#include <gtest/gtest.h>

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

bool PrivateXServer::start(QSize size)
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

    // -displayfd picks a free display and says which, on standard output. -rfbport -1: no TCP port at all (0 would be a
    // port on every interface).
    const bool started = m_server.start(
        QStringLiteral("Xtigervnc"),
        {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-auth"), authority(),
         QStringLiteral("-SecurityTypes"), QStringLiteral("None"), QStringLiteral("-rfbport"), QStringLiteral("-1"),
         QStringLiteral("-rfbunixpath"), rfbSocket(), QStringLiteral("-geometry"),
         QStringLiteral("%1x%2").arg(size.width()).arg(size.height()), QStringLiteral("-depth"), QStringLiteral("24"),
         QStringLiteral("-nolisten"), QStringLiteral("tcp"), QStringLiteral("-Log"), QStringLiteral("*:stderr:0")});
    const bool ready = started && waitUntil([this] { return m_server.output().contains('\n'); });
    EXPECT_TRUE(ready) << "Xtigervnc did not start";
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

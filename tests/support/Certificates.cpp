#include "tests/support/Certificates.h"

#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

#include <utility>

namespace
{

void openssl(const QString &command, const QStringList &more)
{
    QProcess process;
    process.start(QStringLiteral("openssl"), command.split(u' ') + more);
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().constData();
}

QByteArray read(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size());
}

} // namespace

Certificates::Certificates(QString folder)
    : m_folder(std::move(folder))
{
    openssl(
        QStringLiteral("req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj /CN=authority"),
        {QStringLiteral("-keyout"), path("authority.key"), QStringLiteral("-out"), authority()});
}

QString Certificates::authority() const
{
    return path("authority.crt");
}

QString Certificates::signedOne(const Kind &kind)
{
    write(path("index.txt"), {});
    write(path("serial"), "01\n");
    write(path("ca.conf"), "[ca]\ndefault_ca=it\n[it]\ndir=" + m_folder.toLocal8Bit() +
                               "\ndatabase=$dir/index.txt\nserial=$dir/serial\nnew_certs_dir=$dir\ndefault_md=sha256\n"
                               "policy=any\nx509_extensions=names\nunique_subject=no\n[any]\ncommonName=supplied\n"
                               "[names]\nbasicConstraints=CA:FALSE\nsubjectAltName=" +
                               QByteArray(kind.name) + '\n');
    openssl(QStringLiteral("req -new -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -subj /CN=feed"),
            {QStringLiteral("-keyout"), path("server.key"), QStringLiteral("-out"), path("server.csr")});
    openssl(QStringLiteral("ca -batch -notext -startdate %1 -enddate %2")
                .arg(QLatin1String(kind.from), QLatin1String(kind.until)),
            {QStringLiteral("-config"), path("ca.conf"), QStringLiteral("-cert"), authority(),
             QStringLiteral("-keyfile"), path("authority.key"), QStringLiteral("-in"), path("server.csr"),
             QStringLiteral("-out"), path("server.crt")});
    write(path("server.pem"), read(path("server.crt")) + read(path("server.key")));
    return path("server.pem");
}

QString Certificates::selfSigned()
{
    openssl(QStringLiteral("req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 -subj /CN=feed "
                           "-addext subjectAltName=IP:127.0.0.1"),
            {QStringLiteral("-keyout"), path("server.pem"), QStringLiteral("-out"), path("server.pem")});
    return path("server.pem");
}

QString Certificates::path(const char *name) const
{
    return m_folder + u'/' + QLatin1String(name);
}

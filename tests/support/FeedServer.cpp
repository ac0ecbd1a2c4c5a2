#include "tests/support/FeedServer.h"

#include "tests/support/WaitUntil.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <gtest/gtest.h>

namespace
{

QJsonObject scriptOf(const ScriptedAnswer &answer)
{
    QJsonArray headers;
    for (const auto &[name, value] : answer.headers) {
        headers.append(QJsonArray{name, value});
    }
    QJsonObject script{{QStringLiteral("status"), answer.status},
                       {QStringLiteral("headers"), headers},
                       {QStringLiteral("body"), QString::fromLatin1(answer.body)},
                       {QStringLiteral("interim"), QString::fromLatin1(answer.interim)},
                       {QStringLiteral("gated"), answer.gated}};
    const std::pair<QString, std::optional<int>> numbers[] = {{QStringLiteral("pieces"), answer.pieces},
                                                              {QStringLiteral("pause"), answer.pause},
                                                              {QStringLiteral("cut"), answer.cutAfter},
                                                              {QStringLiteral("silence"), answer.mutedFrom}};
    for (const auto &[name, number] : numbers) {
        if (number) {
            script.insert(name, *number);
        }
    }
    return script;
}

} // namespace

bool FeedServer::start(const QList<ScriptedAnswer> &answers)
{
    return startSecurely(answers, QString());
}

bool FeedServer::startSecurely(const QList<ScriptedAnswer> &answers, const QString &certificate)
{
    QJsonArray script;
    for (const ScriptedAnswer &answer : answers) {
        script.append(scriptOf(answer));
    }
    QFile file(m_directory.filePath(QStringLiteral("answers.json")));
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(QJsonDocument(script).toJson(QJsonDocument::Compact)) > 0;
    file.close();
    QStringList arguments{QStringLiteral(KIV_FEED_SERVER), file.fileName()};
    if (!certificate.isNull()) {
        arguments.append(certificate);
    }
    const bool listening = written && m_server.start(QStringLiteral(KIV_PYTHON), arguments) &&
                           waitUntil([this] { return m_server.output().contains('\n'); });
    EXPECT_TRUE(listening) << "the web server does not start";
    m_origin = (certificate.isNull() ? QStringLiteral("http") : QStringLiteral("https")) +
               QStringLiteral("://127.0.0.1:") + QString::fromLatin1(m_server.output().split('\n').first().trimmed());
    return listening;
}

QString FeedServer::address(const QString &path) const
{
    return m_origin + path;
}

void FeedServer::open(int request)
{
    m_server.write("go " + QByteArray::number(request) + '\n');
}

QList<QJsonObject> FeedServer::requests()
{
    QList<QJsonObject> found;
    for (const QJsonObject &report : reports()) {
        if (report.contains(QLatin1String("request"))) {
            found.append(report);
        }
    }
    return found;
}

QList<int> FeedServer::closedByClient()
{
    QList<int> found;
    for (const QJsonObject &report : reports()) {
        if (report.contains(QLatin1String("closed"))) {
            found.append(report.value(QLatin1String("closed")).toInt());
        }
    }
    return found;
}

const QList<QJsonObject> &FeedServer::reports()
{
    const QByteArray output = m_server.output();
    for (qsizetype end = output.indexOf('\n', m_read); end >= 0; end = output.indexOf('\n', m_read)) {
        if (m_read > 0) { // The first line is the port.
            m_reports.append(QJsonDocument::fromJson(output.mid(m_read, end - m_read)).object());
        }
        m_read = end + 1;
    }
    return m_reports;
}

#pragma once

#include "tests/support/ChildProcess.h"

#include <QByteArray>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QTemporaryDir>

#include <optional>
#include <utility>

/// What the server is to answer to one request, misbehaviour included.
struct ScriptedAnswer {
    int status = 200;
    QList<std::pair<QString, QString>> headers = {{QStringLiteral("Content-Type"), QStringLiteral("text/xml")}};
    QByteArray body = {};
    bool gated = false;                ///< Sends nothing before FeedServer::open.
    std::optional<int> pieces = {};    ///< The size of the pieces in which everything is sent.
    std::optional<int> pause = {};     ///< Milliseconds between two of these.
    std::optional<int> cutAfter = {};  ///< Cuts the connection after so many bytes of the body.
    QByteArray interim = {};           ///< What it sends ahead of the answer, as it is.
    std::optional<int> mutedFrom = {}; ///< Falls silent after so many bytes of the body, with the connection open.
};

/// A web server in a process of its own, on a free port of 127.0.0.1.
class FeedServer final
{
public:
    /// Starts it: the first request gets the first answer and so on; the last one serves all that follow. False, with a
    /// test failure, when it does not start.
    bool start(const QList<ScriptedAnswer> &answers);
    /// The same over TLS. The file has the server's certificate and its key, as PEM.
    bool startSecurely(const QList<ScriptedAnswer> &answers, const QString &certificate);

    /// "http://127.0.0.1:<port>", or https, and the path.
    [[nodiscard]] QString address(const QString &path) const;

    /// Lets the gated answer to that request (from 0) go.
    void open(int request);

    /// The requests as they came in: "line", and "headers" by their names in lower case.
    [[nodiscard]] QList<QJsonObject> requests();
    /// The requests whose connection the client closed before their answer was complete.
    [[nodiscard]] QList<int> closedByClient();

private:
    [[nodiscard]] const QList<QJsonObject> &reports();

    QTemporaryDir m_directory;
    ChildProcess m_server;
    QList<QJsonObject> m_reports;
    qsizetype m_read = 0; ///< So much of what the server has said is among the reports.
    QString m_origin;
};

#pragma once

#include <QObject>
#include <QProcess>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <memory>

/// One request to the feed, carried out by the program kivfetch (fetch/FeedFetch.h). Qt's network library would cost
/// each session 260 kB for as long as it lives, and 1,270 kB once it has spoken TLS. Main thread only.
class FeedConnection final : public QObject
{
    Q_OBJECT

public:
    enum class End {
        Complete, ///< The whole answer was received.
        Failed,   ///< It was not, for whatever reason.
    };

    struct Limits {
        std::chrono::milliseconds silence; ///< Without progress. kivfetch sees to it.
        /// However much progress there is. Longer than kivfetch's own: then it cannot end itself, and is killed.
        std::chrono::milliseconds whole;
    };

    /// Sends nothing yet. `program` is the path of kivfetch; null, or another wrong one, is a request that fails.
    FeedConnection(QString program, QUrl address, Limits limits, QObject *parent);

    /// Cancels it if it is in flight. Waits for the end of its process, a second at most.
    ~FeedConnection() override;

    /// Sends the request. To be called once.
    void start();

    /// Breaks the connection. None of the signals comes after that.
    void cancel();

    /// Whether it has ended or was cancelled.
    [[nodiscard]] bool isFinished() const noexcept { return m_isFinished; }

Q_SIGNALS:
    /// Once, before all data. The content type is empty when the server names none.
    void receivedResponse(int status, const QByteArray &contentType);
    void receivedData(const QByteArray &bytes);
    void ended(FeedConnection::End end);

private:
    void read();
    void readResponse();
    void fail();
    void finish(End end);

    QString m_program;
    QUrl m_address;
    Limits m_limits;
    QTimer m_end{this}; ///< Runs only while the request is under way.
    bool m_hasResponse = false;
    bool m_isFinished = false;
    std::unique_ptr<QProcess> m_process = std::make_unique<QProcess>();
};

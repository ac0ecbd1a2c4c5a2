// The longest turn of the event loop while many messages come in: so long the menu stands still.

#include "notify/feed/KivNotificationReceiver.h"
#include "notify/queue/KivNotificationManager.h"
#include "notify/record/DistantFuture.h"
#include "notify/record/KivNotification.h"
#include "notify/rules/KivNotificationProperties.h"
#include "platform/Bundle.h"
#include "platform/data/PropertyList.h"
#include "tests/support/ProcessorTime.h"

#include <QApplication>
#include <QByteArrayList>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <future>
#include <iterator>
#include <optional>
#include <thread>
#include <utility>

namespace
{

using namespace std::chrono_literals;

constexpr int cached = 1000;
constexpr int sent = 10'000;
constexpr int taken = 1000; ///< Of one answer.

QString text()
{
    return QStringLiteral("A new version is out, which does better what the last one did. ").repeated(16); // 1 kB.
}

QVariantList cachedMessages()
{
    QVariantList list;
    for (int id = 1; id <= cached; ++id) {
        KivNotification record;
        record.setMessageId(QString::number(id));
        record.setMaxDate(distantFuture());
        record.setContentHeight(60); // It has been measured.
        record.setMessageText(text());
        list.append(record.exportToDictionary());
    }
    return list;
}

QByteArray feed()
{
    const QByteArray content = text().toUtf8().toBase64();
    QByteArray document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<supportMessages>\n";
    for (int id = cached + 1; id <= cached + sent; ++id) {
        document += "<supportMessage><messageId>" + QByteArray::number(id) +
                    "</messageId><maxDate>any</maxDate><contentHeight>auto</contentHeight><contentData>" + content +
                    "</contentData></supportMessage>\n";
    }
    return document + "</supportMessages>\n";
}

/// One message that is nearly as long as an answer may be, and one behind it.
QByteArray feedOfOneLongMessage()
{
    const auto message = [](int id, const QString &content) {
        return "<supportMessage><messageId>" + QByteArray::number(id) +
               "</messageId><maxDate>any</maxDate><contentData>" + content.toUtf8().toBase64() +
               "</contentData></supportMessage>\n";
    };
    constexpr int kilobytes = 11 * 1024;
    return "<supportMessages>" + message(cached + sent + 1, QStringLiteral("<p>") + text().repeated(kilobytes)) +
           message(cached + sent + 2, text()) + "</supportMessages>";
}

/// One part of a message, of which there is as much as an answer may have.
struct LongPart {
    const char *begin;
    const char *piece;
    const char *end;
};
constexpr LongPart longParts[] = {{"<messageId>", ".", "</messageId>"},
                                  {"<contentType>", "\xC4\xB0", "</contentType>"},
                                  {"<contentData>", "&#46;", "</contentData>"},
                                  {"<messageText>&lt;", "&amp;", "</messageText>"},
                                  {"<!-- ", ".", " -->"}};

constexpr int idBehind(std::size_t part)
{
    return cached + sent + 3 + static_cast<int>(part);
}

/// A message with such a part, and one behind it.
QByteArray feedOfALongPart(std::size_t part)
{
    constexpr qsizetype bytes = 15'700'000;
    const QByteArray piece(longParts[part].piece);
    return QByteArray("<supportMessages><supportMessage><maxDate>any</maxDate>") + longParts[part].begin +
           piece.repeated(bytes / piece.size()) + longParts[part].end + "</supportMessage><supportMessage><messageId>" +
           QByteArray::number(idBehind(part)) + "</messageId></supportMessage></supportMessages>";
}

/// Answers a request for each of the feeds, in a thread of its own; what the port is comes first.
void serve(std::promise<quint16> port)
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    port.set_value(server.serverPort());
    QByteArrayList bodies{feed(), feedOfOneLongMessage()};
    for (std::size_t part = 0; part < std::size(longParts); ++part) {
        bodies += feedOfALongPart(part);
    }
    for (const QByteArray &body : std::as_const(bodies)) {
        server.waitForNewConnection(-1);
        QTcpSocket *const client = server.nextPendingConnection();
        QByteArray request;
        while (!request.contains("\r\n\r\n") && client->waitForReadyRead(-1)) {
            request += client->readAll();
        }
        client->write("HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\nConnection: close\r\nContent-Length: " +
                      QByteArray::number(body.size()) + "\r\n\r\n" + body);
        while (client->bytesToWrite() > 0 && client->waitForBytesWritten(-1)) {
        }
        client->disconnectFromHost();
    }
}

/// Runs the event loop until `isOver`, and a second longer for what follows. The most processor time that this thread
/// takes in one turn, `begin` among them; nothing after a minute.
std::optional<std::chrono::nanoseconds> longestTurn(const std::function<void()> &begin,
                                                    const std::function<bool()> &isOver)
{
    auto before = processorTimeOfThisThread();
    std::chrono::nanoseconds longest{};
    begin();
    QTimer turn;
    bool isEnding = false;
    turn.callOnTimeout([&] {
        const auto now = processorTimeOfThisThread();
        longest = std::max(longest, now - before);
        before = now;
        if (!isEnding && isOver()) {
            isEnding = true;
            QTimer::singleShot(1s, [] { QCoreApplication::exit(EXIT_SUCCESS); });
        }
    });
    turn.start(0);
    QTimer::singleShot(60s, [] { QCoreApplication::exit(EXIT_FAILURE); });
    return QCoreApplication::exec() == EXIT_SUCCESS ? std::optional(longest) : std::nullopt;
}

bool print(const char *what, std::optional<std::chrono::nanoseconds> time)
{
    if (!time) {
        std::fprintf(stderr, "%s: not over after a minute\n", what);
        return false;
    }
    std::printf("longestTurn %s %.2f ms\n", what, std::chrono::duration<double, std::milli>(*time).count());
    return true;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication::setDesktopSettingsAware(false);
    const QApplication application(argc, argv);

    std::promise<quint16> port;
    std::future<quint16> portOfTheFeed = port.get_future();
    std::jthread server(serve, std::move(port));
    const QTemporaryDir home;
    const QString address = QStringLiteral("http://127.0.0.1:%1/").arg(portOfTheFeed.get());
    if (!PropertyList::writeFile(home.filePath(QStringLiteral("Info.plist")),
                                 QVariantMap{{QStringLiteral("KIVSupportMessages"), address},
                                             {QStringLiteral("KIVBuildVersion"), QStringLiteral("3.2.1")}},
                                 PropertyList::Writing::InPlace) ||
        !QFile::link(QStringLiteral(KIV_FETCH), home.filePath(QStringLiteral("kivfetch"))) ||
        !NotificationCache(home.path()).write(cachedMessages())) {
        std::_Exit(EXIT_FAILURE); // The server still waits.
    }
    const Bundle bundle(home.path());
    const UserDatabase nobody{.loginName = [] { return std::nullopt; },
                              .groupMembers = [](const std::string &) { return std::vector<std::string>(); }};
    KivNotificationProperties properties(bundle, home.path(), QString(), nobody, &QDateTime::currentDateTimeUtc);
    std::optional<KivNotificationManager> manager;
    std::optional<KivNotificationReceiver> receiver;
    const auto readTheCache = [&] { manager.emplace(properties, home.path(), &QDateTime::currentDateTimeUtc); };
    const auto isRead = [&] { return manager->showNextTimer() != nullptr; };
    const auto askTheFeed = [&] {
        receiver.emplace(properties, bundle, *manager);
        receiver->recieveNotifications();
    };
    const auto hasComeIn = [&] { return properties.lastMesID() == QString::number(cached + taken); };
    const auto askTheFeedAgain = [&] { receiver->receiveNextNotification(); };
    const auto hasCome = [&] { return properties.lastMesID() == QString::number(cached + sent + 2); };
    const auto longestTurnOfALongPart = [&] {
        std::optional<std::chrono::nanoseconds> longest = 0ns;
        for (std::size_t part = 0; part < std::size(longParts) && longest; ++part) {
            const auto isBehind = [&] { return properties.lastMesID() == QString::number(idBehind(part)); };
            const auto time = longestTurn(askTheFeedAgain, isBehind);
            longest = time ? std::optional(std::max(*longest, *time)) : std::nullopt;
        }
        return longest;
    };
    const bool isMeasured =
        print("cache", longestTurn(readTheCache, isRead)) && print("feed", longestTurn(askTheFeed, hasComeIn)) &&
        print("message", longestTurn(askTheFeedAgain, hasCome)) && print("part", longestTurnOfALongPart());
    manager->saveUnsavedRecords();
    std::fflush(stdout);
    if (!isMeasured) {
        std::_Exit(EXIT_FAILURE);
    }
    return EXIT_SUCCESS;
}

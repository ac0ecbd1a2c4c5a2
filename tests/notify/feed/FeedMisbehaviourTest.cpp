#include "notify/feed/KivNotificationReceiver.h"
#include "notify/record/NotificationSink.h"
#include "notify/rules/KivNotificationProperties.h"
#include "platform/Bundle.h"
#include "platform/data/PropertyList.h"
#include "shell/Application.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/WaitUntil.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <random>
#include <sys/resource.h>

namespace
{

using namespace std::chrono_literals;

class CountingSink final : public NotificationSink
{
public:
    void enqueueNotification(const std::shared_ptr<KivNotification> &) override { ++count; }

    int count = 0;
};

/// Feels the pulse of the event loop.
class Pulse final
{
public:
    Pulse()
    {
        m_timer.setTimerType(Qt::PreciseTimer);
        m_timer.callOnTimeout([this] { m_standstill = std::max(m_standstill, m_since.restart()); });
        m_timer.start(5);
        m_since.start();
    }

    [[nodiscard]] qint64 standstill() const
    {
        return m_standstill;
    } ///< The longest it has stood still, in milliseconds.

private:
    QTimer m_timer;
    QElapsedTimer m_since;
    qint64 m_standstill = 0;
};

/// The most memory that this process has ever had at once, in KiB.
long peakMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    EXPECT_TRUE(status.open(QIODevice::ReadOnly));
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:")) {
            return line.simplified().split(' ').at(1).toLong();
        }
    }
    return -1;
}

/// The most memory that any child that has ended ever had at once, in KiB.
long peakMemoryOfChildren()
{
    rusage usage = {};
    EXPECT_EQ(getrusage(RUSAGE_CHILDREN, &usage), 0);
    return usage.ru_maxrss;
}

/// Counts the crashes of the program that fetches.
int crashes = 0;

void countCrashes(QtMsgType, const QMessageLogContext &, const QString &message)
{
    crashes += message.contains(QLatin1String("crashed")) ? 1 : 0;
    std::fprintf(stderr, "%s\n", qPrintable(message));
}

class FeedMisbehaviour : public testing::Test
{
protected:
    FeedMisbehaviour()
    {
        EXPECT_TRUE(m_server.start(QStringLiteral(KIV_PYTHON),
                                   {QStringLiteral(KIV_MISBEHAVING_SERVER), QString::number(seed)}));
        EXPECT_TRUE(waitUntil([this] { return m_server.output().contains('\n'); }));
        m_port = QString::fromLatin1(m_server.output().split('\n').first().trimmed());
    }

    /// One request; false when it has not ended after ten seconds.
    bool ask()
    {
        m_receiver->receiveNextNotification();
        const bool ended =
            waitUntil([&] { return !m_receiver->connection() || m_receiver->connection()->isFinished(); }, 10s);
        QCoreApplication::sendPostedEvents(&*m_receiver); // It may not have heard of the end yet.
        return ended;
    }

    /// From now on it asks for that path, and has forgotten what it has received. It takes silence for so long.
    void askFor(const QString &path, std::chrono::milliseconds timeout)
    {
        const QVariantMap info{
            {QStringLiteral("KIVSupportMessages"), QStringLiteral("http://127.0.0.1:") + m_port + path}};
        ASSERT_TRUE(PropertyList::writeFile(m_directory.filePath(QStringLiteral("Info.plist")), info,
                                            PropertyList::Writing::InPlace));
        const UserDatabase nobody{.loginName = [] { return std::nullopt; },
                                  .groupMembers = [](const std::string &) { return std::vector<std::string>(); }};
        m_receiver.reset();
        QFile::link(QStringLiteral(KIV_FETCH), m_directory.filePath(QStringLiteral("kivfetch"))); // Unless it is there.
        m_bundle.emplace(m_directory.path());
        m_properties.emplace(*m_bundle, m_directory.path(), QString(), nobody, &QDateTime::currentDateTimeUtc);
        m_receiver.emplace(*m_properties, *m_bundle, sink, FeedTiming{.timeout = timeout});
    }

    [[nodiscard]] QByteArray lastCase() { return m_server.output().trimmed().split('\n').last(); }

    [[nodiscard]] qsizetype casesServed() { return m_server.output().count('\n') - 1; }

    /// Give it as --gtest_random_seed to see the same again.
    const unsigned seed = GTEST_FLAG_GET(random_seed) != 0 ? static_cast<unsigned>(GTEST_FLAG_GET(random_seed))
                                                           : 1 + std::random_device()() % 99'999;
    CountingSink sink;

private:
    QTemporaryDir m_directory;
    ChildProcess m_server;
    QString m_port;
    std::optional<Bundle> m_bundle;
    std::optional<KivNotificationProperties> m_properties;
    std::optional<KivNotificationReceiver> m_receiver;
};

TEST_F(FeedMisbehaviour, NeitherCrashesNorHoldsUpNorFillsTheAgent)
{
    constexpr int cases = 1000;
    RecordProperty("seed", std::to_string(seed));
    qInstallMessageHandler(countCrashes);
    askFor(QStringLiteral("/feed"), 100ms);
    const Pulse pulse;
    for (int number = 0; number < cases; ++number) {
        ASSERT_TRUE(ask()) << "seed " << seed << ", " << lastCase().toStdString();
        ASSERT_LT(pulse.standstill(), 2000) << "seed " << seed << ", " << lastCase().toStdString();
    }
    std::printf("%d cases from seed %u: the event loop stood still for %lld ms at most, peak memory %ld KiB, of "
                "fetching %ld KiB\n",
                cases, seed, static_cast<long long>(pulse.standstill()), peakMemory(), peakMemoryOfChildren());
    EXPECT_GT(casesServed(), cases * 9 / 10) << "it was not tried on much";
    sink.count = 0;
    askFor(QStringLiteral("/well"), 10s); // On a busy machine kivfetch takes its time to start.
    ASSERT_TRUE(ask());
    EXPECT_EQ(sink.count, 1);
    EXPECT_EQ(crashes, 0) << "seed " << seed;
    EXPECT_LT(peakMemory(), 512 * 1024) << "KiB, seed " << seed;
    EXPECT_LT(peakMemoryOfChildren(), 512 * 1024) << "KiB, seed " << seed;
}

} // namespace

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    QApplication::setDesktopSettingsAware(false);
    // A document may survive and name a field that there is none of: the agent's own application object catches that.
    Application application(argc, argv);
    return RUN_ALL_TESTS();
}

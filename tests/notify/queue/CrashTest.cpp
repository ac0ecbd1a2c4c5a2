#include "notify/queue/CacheWriter.h"
#include "platform/data/PropertyList.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/WaitUntil.h"
#ifdef Q_OS_LINUX
#include "tests/support/SmallDisk.h"
#endif

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <random>
#include <utility>

namespace
{

/// Reads cache files as another program does: Python.
class OtherReader final
{
public:
    OtherReader()
    {
        constexpr char program[] = R"(
import plistlib, sys
for path in sys.stdin:
    try:
        with open(path.rstrip("\n"), "rb") as file:
            records = plistlib.load(file)
        print("".join("%sx%d " % (each["messageId"], each["messageRepeat"]) for each in records), flush=True)
    except Exception as problem:
        print("unreadable: %r" % problem, flush=True)
)";
        EXPECT_TRUE(m_python.start(QStringLiteral(KIV_PYTHON),
                                   {QStringLiteral("-u"), QStringLiteral("-c"), QString::fromLatin1(program)}));
    }

    /// The file's messages in one line, in the subject's own form.
    [[nodiscard]] QByteArray stateIn(const QString &file)
    {
        const qsizetype before = m_python.output().size();
        m_python.write(file.toLocal8Bit() + '\n');
        EXPECT_TRUE(waitUntil([&] { return m_python.output().mid(before).endsWith('\n'); }));
        return m_python.output().mid(before);
    }

private:
    ChildProcess m_python;
};

/// The settings of a user who wants to see every message, and among them the last message's id.
class Preferences final
{
public:
    explicit Preferences(const QString &home)
        : m_file(home + QStringLiteral("/Library/Preferences/com.tamborel.kivmenua.plist"))
    {
        EXPECT_TRUE(QDir().mkpath(QFileInfo(m_file).path()));
        for (const char *what :
             {"News", "Notices", "Updates", "Warnings", "LowPriority", "MediumPriority", "HighPriority"}) {
            m_settings.insert(QStringLiteral("KivNotificationShow") + QLatin1String(what), true);
        }
        m_settings.insert(lastId, QStringLiteral("0"));
        EXPECT_TRUE(PropertyList::writeFile(m_file, m_settings, PropertyList::Writing::InPlace));
    }

    /// The id in the file, all the rest of which must be as it was.
    [[nodiscard]] int id() const
    {
        QVariantMap present = PropertyList::readFile(m_file).toMap();
        const QString id = std::exchange(present[lastId], m_settings.value(lastId)).toString();
        EXPECT_EQ(present, m_settings) << "the settings are not the user's any more";
        return id.toInt();
    }

private:
    static inline const QString lastId = QStringLiteral("KivNotificationLastMessId");

    const QString m_file;
    QVariantMap m_settings{{QStringLiteral("KivNotificationShowTimeout"), 3},
                           {QStringLiteral("KivNotificationCloseTimeout"), 2},
                           {QStringLiteral("KivNotificationRepeatTimeout"), 3}};
};

/// The highest id of a line of ids and repeat codes; 0 when it has none.
int highestIdOf(const QByteArray &line)
{
    int highest = 0;
    for (const QByteArray &entry : line.simplified().split(' ')) {
        highest = std::max(highest, entry.left(entry.indexOf('x')).toInt());
    }
    return highest;
}

int killsOfTheRun()
{
    constexpr int whenNothingIsSaid = 200;
    const int kills = qEnvironmentVariableIntValue("KIV_CRASH_KILLS");
    return kills > 0 ? kills : whenNothingIsSaid;
}

/// A home on a disk of its own, which can be full, where the system allows that.
class Home final
{
public:
    Home()
    {
#ifdef Q_OS_LINUX
        static const QString whyNoDisk = SmallDisk::unshareMounts();
        if (whyNoDisk.isEmpty()) {
            m_disk.emplace(path(), 4096);
        } else {
            std::printf("no full disks: %s\n", qPrintable(whyNoDisk));
        }
#endif
        EXPECT_TRUE(QDir().mkpath(path()));
    }

    [[nodiscard]] QString path() const
    {
        return m_folder.filePath(QStringLiteral("home"));
    }

    /// False where that cannot be.
    bool fill()
    {
#ifdef Q_OS_LINUX
        if (m_disk) {
            m_disk->fill();
            return true;
        }
#endif
        return false;
    }
    void makeRoom()
    {
#ifdef Q_OS_LINUX
        m_disk->makeRoom();
#endif
    }

private:
    const QTemporaryDir m_folder;
#ifdef Q_OS_LINUX
    std::optional<SmallDisk> m_disk;
#endif
};

} // namespace

TEST(Crash, LeavesAFileThatHoldsAStateOfTheQueueWheneverItComes)
{
    const int kills = killsOfTheRun();
    const auto seed = std::random_device()();
    RecordProperty("seed", std::to_string(seed));
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    Home home;
    const QString file = home.path() + QStringLiteral("/Library/Caches/com.tamborel.kivune/notifications.plist");

    const Preferences preferences(home.path());
    EXPECT_EQ(preferences.id(), 0);

    OtherReader reader;
    int statesSeen = 0;
    int idsSeen = 0;
    int fullDisks = 0;
    int storedId = 0;
    int highestSaved = 0; // Of all ids that the file has held.
    int highestSaid = 0;
    QByteArray before = "\n"; // No file is an empty queue.
    for (int kill = 0; kill < kills && !testing::Test::HasFailure(); ++kill) {
        const bool isFull = kill % 10 == 9 && home.fill();
        fullDisks += isFull ? 1 : 0;
        const bool hasLongTexts = kill % 4 == 3;
        const bool isInThreads = hasLongTexts || QFileInfo(file).size() > CacheWriter::maxBytesAtOnce;
        ChildProcess subject;
        ASSERT_TRUE(subject.start(QStringLiteral(KIV_CRASH_SUBJECT),
                                  {home.path(), QString::number(random()), QString::number(highestSaid),
                                   QString::number(hasLongTexts ? 60'000 : 3'000)}));
        auto maxLife = std::chrono::microseconds(80'000);
        if (random() % 4 != 0) { // The others die at some moment of their start.
            const auto steps = static_cast<qsizetype>(random() % 4);
            ASSERT_TRUE(waitUntil([&] { return subject.output().count('\n') > steps; }));
            maxLife /= 8;
        }
        const auto end = std::chrono::steady_clock::now() + maxLife * (random() % 1000) / 1000;
        ASSERT_TRUE(waitUntil([&] { return std::chrono::steady_clock::now() >= end; }));
        subject.kill();
        if (isFull) {
            home.makeRoom();
        }
        // What it has not finished, a start after an hour would remove.
        QDir folder(QFileInfo(file).path());
        for (const QString &leftover : folder.entryList({QStringLiteral("notifications.plist.??????")}, QDir::Files)) {
            EXPECT_TRUE(folder.remove(leftover));
        }

        const QByteArray state = QFileInfo::exists(file) ? reader.stateIn(file) : QByteArray("\n");
        QByteArrayList said = subject.output().split('\n');
        said.removeLast(); // What follows the last line's end.
        if (!said.isEmpty()) {
            // A message read back is the same one as before.
            EXPECT_EQ(said.first() + '\n', "started " + before) << "something was lost over a restart";
            said.first() = said.first().mid(8);
        }
        // The last step may not have been carried out, and a first message is not saved at once.
        // On a full disk the file stays as it was; a thread is still at it while the queue goes on.
        const qsizetype latest = isFull || isInThreads ? said.size() : 4;
        bool isKnown = said.size() <= latest && state == before;
        for (const QByteArray &line : said.mid(std::max<qsizetype>(0, said.size() - latest))) {
            isKnown = isKnown || line + '\n' == state;
        }
        EXPECT_TRUE(isKnown) << "after kill " << kill << " the file holds\n"
                             << state.constData() << "and the queue went from\n"
                             << before.constData() << "through\n"
                             << subject.output().constData();
        // An id that is stored stands for messages that are saved: the feed does not send them again. Only what comes
        // into an empty queue is shown first and saved later.
        const qsizetype reached = said.lastIndexOf(state.chopped(1));
        highestSaved = std::max(highestSaved, highestIdOf(state));
        for (qsizetype i = 0; i < said.size(); ++i) {
            highestSaid = std::max(highestSaid, highestIdOf(said.at(i)));
            if (i <= reached) {
                highestSaved = std::max(highestSaved, highestIdOf(said.at(i)));
            }
        }
        const int idBefore = std::exchange(storedId, preferences.id());
        EXPECT_GE(storedId, idBefore) << "after kill " << kill << " the feed sends again what it has sent";
        EXPECT_LE(storedId, state == "\n" ? highestSaid : highestSaved)
            << "after kill " << kill << " the feed sends no message up to " << storedId
            << " again, and the file holds\n"
            << state.constData() << "where the queue went through\n"
            << subject.output().constData();
        highestSaved = std::max(highestSaved, storedId);
        idsSeen += storedId != idBefore ? 1 : 0;
        statesSeen += state != before ? 1 : 0;
        before = state;
    }
    std::printf("%d kills, %d of them with a full disk: %d states and %d ids were new\n", kills, fullDisks, statesSeen,
                idsSeen);
    // What ./kiv kills says of full disks must be so: where no disk can be had, it fails.
    EXPECT_TRUE(fullDisks > 0 || kills < 10 || !qEnvironmentVariableIsSet("KIV_CRASH_KILLS")) << "no disk was full";
    // Otherwise nothing has been written while it was killed.
    EXPECT_GT(statesSeen, kills / 8);
    EXPECT_GT(idsSeen, kills / 8);
}

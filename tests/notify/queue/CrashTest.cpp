#include "tests/support/ChildProcess.h"
#include "tests/support/WaitUntil.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>

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

} // namespace

TEST(Crash, LeavesAFileThatHoldsAStateOfTheQueueWheneverItComes)
{
    constexpr int kills = 200;
    const auto seed = std::random_device()();
    RecordProperty("seed", std::to_string(seed));
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const QTemporaryDir home;
    const QString file = home.filePath(QStringLiteral("Library/Caches/com.tamborel.kivune/notifications.plist"));

    OtherReader reader;
    int statesSeen = 0;
    QByteArray before = "\n"; // No file is an empty queue.
    for (int kill = 0; kill < kills && !testing::Test::HasFailure(); ++kill) {
        ChildProcess subject;
        ASSERT_TRUE(subject.start(QStringLiteral(KIV_CRASH_SUBJECT), {home.path(), QString::number(random())}));
        if (random() % 4 != 0) { // The others die at some moment of their start.
            ASSERT_TRUE(waitUntil([&] { return subject.output().contains('\n'); }));
        }
        const auto end = std::chrono::steady_clock::now() + std::chrono::microseconds(random() % 80'000);
        ASSERT_TRUE(waitUntil([&] { return std::chrono::steady_clock::now() >= end; }));
        subject.kill();

        const QByteArray state = QFileInfo::exists(file) ? reader.stateIn(file) : QByteArray("\n");
        QByteArrayList said = subject.output().split('\n');
        said.removeLast(); // What follows the last line's end.
        if (!said.isEmpty()) {
            // A message read back is the same one as before.
            EXPECT_EQ(said.first() + '\n', "started " + before) << "something was lost over a restart";
            said.first() = said.first().mid(8);
        }
        // The last step may not have been carried out, and a first message is not saved at once.
        constexpr qsizetype latest = 4;
        bool isKnown = said.size() <= latest && state == before;
        for (const QByteArray &line : said.mid(std::max<qsizetype>(0, said.size() - latest))) {
            isKnown = isKnown || line + '\n' == state;
        }
        EXPECT_TRUE(isKnown) << "after kill " << kill << " the file holds\n"
                             << state.constData() << "and the queue went from\n"
                             << before.constData() << "through\n"
                             << subject.output().constData();
        statesSeen += state != before ? 1 : 0;
        before = state;
    }
    // Otherwise nothing has been written while it was killed.
    EXPECT_GT(statesSeen, kills / 8);
}

#include "platform/LogOutput.h"

#include "platform/LogCategories.h"
#include "tests/support/UnreadTerminal.h"

#include <QScopeGuard>

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

/// A pipe instead of this program's standard error, as who reads its lines has one.
class LogOutputTest : public testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(::pipe(m_ends.data()), 0);
        m_before = ::dup(STDERR_FILENO);
        ASSERT_GE(::dup2(m_ends[1], STDERR_FILENO), 0);
        ::fcntl(m_ends[0], F_SETFL, O_NONBLOCK);
        LogOutput::useStandardError();
    }

    void TearDown() override
    {
        qInstallMessageHandler(nullptr);
        ::dup2(m_before, STDERR_FILENO);
        ::close(m_before);
        ::close(m_ends[1]);
        closeReader();
    }

    void closeReader()
    {
        if (m_ends[0] >= 0) {
            ::close(m_ends[0]);
            m_ends[0] = -1;
        }
    }

    /// All that has been written and not been read.
    QByteArray written()
    {
        QByteArray all;
        std::array<char, 4096> bytes{};
        for (ssize_t size = 1; size > 0;) {
            size = ::read(m_ends[0], bytes.data(), bytes.size());
            all.append(bytes.data(), std::max<ssize_t>(size, 0));
        }
        return all;
    }

    /// Fills the pipe until nothing more goes in.
    void fill() const
    {
        ::fcntl(m_ends[1], F_SETFL, O_NONBLOCK);
        const QByteArray much(PIPE_BUF, 'x');
        while (::write(m_ends[1], much.constData(), static_cast<std::size_t>(much.size())) > 0) {
        }
        ::fcntl(m_ends[1], F_SETFL, 0);
    }

private:
    std::array<int, 2> m_ends{-1, -1};
    int m_before = -1;
};

} // namespace

TEST_F(LogOutputTest, IsALineWithItsCategoryForEachWarning)
{
    qCWarning(linkLog, "no way");
    EXPECT_EQ(written(), "kiv.link: no way\n");
}

TEST_F(LogOutputTest, IsSilentAboutDecisionsUntilAsked)
{
    for (const auto category : {agentLog, itemLog, linkLog, feedLog, queueLog, popUpLog}) {
        EXPECT_FALSE(category().isDebugEnabled()) << category().categoryName();
        EXPECT_FALSE(category().isInfoEnabled()) << category().categoryName();
        EXPECT_TRUE(category().isWarningEnabled()) << category().categoryName();
    }
    const auto silence = qScopeGuard([] { QLoggingCategory::setFilterRules(QString()); });
    QLoggingCategory::setFilterRules(QStringLiteral("kiv.*=true"));
    qCDebug(itemLog, "in the tray");
    EXPECT_EQ(written(), "kiv.item: in the tray\n");
}

TEST_F(LogOutputTest, KeepsATextFromOutsideInOneLine)
{
    qCWarning(feedLog) << "the word" << QStringLiteral("a\nkiv.link: all is well\x1b[2J");
    EXPECT_EQ(written(), "kiv.feed: the word \"a\\nkiv.link: all is well\\u001B[2J\"\n");
}

TEST_F(LogOutputTest, DoesNotWaitForAReaderWhoHasStopped)
{
    fill();
    qCWarning(linkLog, "lost"); // To wait would last for ever.
    EXPECT_FALSE(written().contains("lost"));
    qCWarning(linkLog, "read again");
    EXPECT_EQ(written(), "kiv.link: read again\n");
}

TEST(LogOutputToATerminal, DoesNotWaitForOneThatNobodyReads)
{
    UnreadTerminal terminal;
    LogOutput::useStandardError();
    const auto before = qScopeGuard([] { qInstallMessageHandler(nullptr); });
    EXPECT_TRUE(terminal.letsGo([] {
        for (int line = 0; line < 1000; ++line) {
            qCWarning(linkLog) << QString(100, u'x');
        }
    }));
    EXPECT_EQ(terminal.firstBytes().substr(0, 13), "kiv.link: \"xx");
    EXPECT_TRUE(terminal.isStillOneThatWaits()) << "the shell has it, too";
}

TEST_F(LogOutputTest, CutsWhatAPipeDoesNotTakeInOnePiece)
{
    qCWarning(linkLog) << QString(qsizetype{3} * PIPE_BUF, u'x');
    const QByteArray line = written();
    EXPECT_EQ(line.size(), PIPE_BUF);
    EXPECT_TRUE(line.endsWith("x\n"));
}

TEST_F(LogOutputTest, SurvivesAReaderWhoHasGone)
{
    const auto before = std::signal(SIGPIPE, SIG_IGN); // As platform/GraphicalSession.h has it.
    closeReader();
    qCWarning(linkLog, "to nobody");
    std::signal(SIGPIPE, before);
}

TEST_F(LogOutputTest, LeavesThePlaceOfAClosedStandardErrorToNobody)
{
    ::close(STDERR_FILENO);
    LogOutput::useStandardError();
    const int next = ::open("/", O_RDONLY | O_CLOEXEC);
    EXPECT_GT(next, STDERR_FILENO);
    ::close(next);
    struct stat standardError = {};
    ASSERT_EQ(::fstat(STDERR_FILENO, &standardError), 0);
    EXPECT_TRUE(S_ISCHR(standardError.st_mode)) << "it is /dev/null";
}

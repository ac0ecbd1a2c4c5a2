#include "platform/linux/include/ExecutableName.h"

#include "tests/support/ChildProcess.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cerrno>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

TEST(ExecutableName, IsTheFileNameOfTheProgram)
{
    EXPECT_EQ(executableName(::getpid()), ::program_invocation_short_name);
}

TEST(ExecutableName, StaysWhenTheFileIsRemoved)
{
    const QTemporaryDir folder;
    const QString name = QStringLiteral("an executable whose name is rather long");
    const QString program = folder.filePath(name);
    ASSERT_TRUE(QFile::copy(QStringLiteral("/bin/sleep"), program));
    ChildProcess child;
    ASSERT_TRUE(child.start(program, {QStringLiteral("60")}));
    EXPECT_EQ(executableName(static_cast<pid_t>(child.pid())), name.toUtf8());
    ASSERT_TRUE(QFile::remove(program));
    EXPECT_EQ(executableName(static_cast<pid_t>(child.pid())), name.toUtf8());
}

TEST(ExecutableName, IsTheKernelsShortNameWhenTheFileMayNotBeSeen)
{
    // A process that has ended has no file any more, and a name until somebody has asked for its end.
    const pid_t child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child), &info, WEXITED | WNOWAIT), 0);
    constexpr qsizetype maxShortNameLength = 15;
    EXPECT_EQ(executableName(child), QByteArray(::program_invocation_short_name).left(maxShortNameLength));
    ASSERT_EQ(::waitpid(child, nullptr, 0), child);
    EXPECT_EQ(executableName(child), QByteArray());
}

} // namespace

#include "platform/files/RegularFile.h"

#include "platform/data/PropertyList.h"

#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

constexpr int notTraceable = 77;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

/// What is in the file before and after each system call of a process that overwrites it: what a kill at any moment
/// would leave. None when the system lets nobody look on.
QByteArrayList momentsOfOverwriting(const QString &path, const QByteArray &content)
{
    const pid_t writer = ::fork();
    if (writer == 0) {
        if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) {
            ::_exit(notTraceable);
        }
        ::raise(SIGSTOP);
        ::_exit(RegularFile::overwrite(path, content) ? 0 : 1);
    }
    QByteArrayList moments;
    int status = 0;
    while (::waitpid(writer, &status, 0) == writer && WIFSTOPPED(status)) {
        moments.append(contentOf(path));
        EXPECT_EQ(::ptrace(PTRACE_SYSCALL, writer, nullptr, nullptr), 0);
    }
    EXPECT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == notTraceable) {
        return {};
    }
    EXPECT_EQ(WEXITSTATUS(status), 0);
    return moments;
}

QVariantMap settingsWith(const QString &id)
{
    return {{QStringLiteral("id"), id}, {QStringLiteral("show"), 3}, {QStringLiteral("title"), QStringLiteral("a")}};
}

} // namespace

TEST(RegularFile, HoldsTheOldOrTheNewContentAtEveryMomentOfItsOverwriting)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("settings.plist"));
    const char *const steps[][2] = {{"0", "1234"}, {"9", "10"}, {"17", "18"}, {"1234", "5"}};
    for (const auto &[before, after] : steps) {
        SCOPED_TRACE(before);
        const QVariantMap old = settingsWith(QString::fromLatin1(before));
        const QVariantMap fresh = settingsWith(QString::fromLatin1(after));
        ASSERT_TRUE(RegularFile::overwrite(path, PropertyList::toXml(old)));
        const QByteArrayList moments = momentsOfOverwriting(path, PropertyList::toXml(fresh));
        if (moments.isEmpty()) {
            GTEST_SKIP() << "nobody may look on while another process works";
        }
        for (const QByteArray &moment : moments) {
            EXPECT_THAT(PropertyList::read(moment).toMap(), testing::AnyOf(old, fresh)) << moment.constData();
        }
        EXPECT_EQ(PropertyList::read(moments.first()).toMap(), old);
        EXPECT_EQ(contentOf(path), PropertyList::toXml(fresh)) << "and nothing behind it in the end";
    }
}

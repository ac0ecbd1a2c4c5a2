#include "notify/queue/NotificationCache.h"

#include "platform/data/PropertyList.h"
#include "tests/support/FullDisk.h"
#include "tests/support/LogLines.h"
#include "tests/support/MemoryLimit.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

QVariantList listWith(const char *id)
{
    return {QVariantMap{{QStringLiteral("messageId"), QString::fromLatin1(id)}}};
}

/// The warnings that come while it lives.
class Warnings final
{
public:
    Warnings() { s_heard.clear(); }
    ~Warnings() { qInstallMessageHandler(m_before); }
    Warnings(const Warnings &) = delete;
    Warnings &operator=(const Warnings &) = delete;

    [[nodiscard]] static const QStringList &heard() { return s_heard; }

private:
    inline static QStringList s_heard;
    QtMessageHandler m_before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext &, const QString &text) { s_heard.append(text); });
};

class NotificationCacheTest : public testing::Test
{
protected:
    [[nodiscard]] static struct stat status(const QString &path)
    {
        struct stat result = {};
        EXPECT_EQ(::stat(QFile::encodeName(path).constData(), &result), 0);
        return result;
    }
    [[nodiscard]] static mode_t mode(const QString &path) { return status(path).st_mode & 0777; }

    [[nodiscard]] static QByteArray contentOf(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void put(const QByteArray &content) const
    {
        ASSERT_TRUE(QDir().mkpath(folder()));
        QFile file(cache.path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(content), content.size());
    }

    [[nodiscard]] QString folder() const { return QFileInfo(cache.path()).path(); }
    [[nodiscard]] QStringList files() const
    {
        return QDir(folder()).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    }

    const QTemporaryDir home;
    NotificationCache cache{home.path()};
};

TEST_F(NotificationCacheTest, LiesInTheUsersCaches)
{
    EXPECT_EQ(cache.path(), home.path() + QStringLiteral("/Library/Caches/com.tamborel.kivune/notifications.plist"));
    EXPECT_FALSE(QFileInfo::exists(home.filePath(QStringLiteral("Library")))) << "made before anything is written";
}

TEST_F(NotificationCacheTest, ReadsBackWhatWasWritten)
{
    EXPECT_EQ(cache.read(), QVariantList());
    ASSERT_TRUE(cache.write(listWith("1")));
    EXPECT_EQ(NotificationCache(home.path()).read(), listWith("1"));
    ASSERT_TRUE(cache.write({}));
    EXPECT_EQ(contentOf(cache.path()), PropertyList::toXml(QVariantList())) << "an empty queue is an empty array";
    EXPECT_EQ(NotificationCache(home.path()).read(), QVariantList());
}

TEST_F(NotificationCacheTest, IsTheUsersAlone)
{
    const mode_t before = ::umask(0);
    EXPECT_TRUE(cache.write(listWith("1")));
    ::umask(before);
    EXPECT_EQ(mode(cache.path()), 0600U);
    EXPECT_EQ(mode(folder()), 0700U);
}

TEST_F(NotificationCacheTest, LocksUpAFileThatOthersCouldRead)
{
    ASSERT_TRUE(cache.write(listWith("1")));
    ASSERT_EQ(::chmod(QFile::encodeName(cache.path()).constData(), 0644), 0);
    EXPECT_TRUE(cache.write(listWith("1")));
    EXPECT_EQ(mode(cache.path()), 0600U);
}

TEST_F(NotificationCacheTest, DoesNotTouchAFileThatHoldsThisAlready)
{
    ASSERT_TRUE(cache.write(listWith("1")));
    const ino_t before = status(cache.path()).st_ino;
    EXPECT_TRUE(cache.write(listWith("1")));
    EXPECT_TRUE(NotificationCache(home.path()).write(listWith("1")));
    EXPECT_EQ(status(cache.path()).st_ino, before);
    EXPECT_TRUE(cache.write(listWith("2")));
    EXPECT_NE(status(cache.path()).st_ino, before);
}

TEST_F(NotificationCacheTest, WritesAgainWhatSomebodyHasTakenAway)
{
    ASSERT_TRUE(cache.write(listWith("1")));
    ASSERT_TRUE(QDir(home.filePath(QStringLiteral("Library"))).removeRecursively());
    EXPECT_TRUE(cache.write(listWith("1")));
    EXPECT_EQ(cache.read(), listWith("1"));
}

TEST_F(NotificationCacheTest, IsEmptyWhenTheFileHoldsNoArray)
{
    for (const QByteArray &content :
         {QByteArray(), QByteArray("garbage"), QByteArray("<plist><array><string>cut"),
          PropertyList::toXml(QVariantMap{{QStringLiteral("a"), 1}}), PropertyList::toXml(QStringLiteral("text"))}) {
        put(content);
        EXPECT_EQ(cache.read(), QVariantList()) << content.toStdString();
    }
}

TEST_F(NotificationCacheTest, SaysWhyThereAreNoMessagesFromBefore)
{
    LogLines log;
    EXPECT_TRUE(cache.read().isEmpty());
    EXPECT_THAT(log.take(), testing::ElementsAre(testing::EndsWith("notifications.plist\" cannot be read")));
    put("<plist><dict/></plist>");
    EXPECT_TRUE(cache.read().isEmpty());
    EXPECT_THAT(log.take(), testing::ElementsAre(testing::EndsWith("notifications.plist\" holds no list")));
}

TEST_F(NotificationCacheTest, KeepsAFileThatItCannotMakeSenseOfUnderASecondNameOnce)
{
    put("not a list");
    EXPECT_EQ(cache.read(), QVariantList());
    ASSERT_TRUE(cache.write(listWith("1")));
    EXPECT_EQ(contentOf(cache.pathOfUnreadable()), "not a list");
    EXPECT_EQ(cache.read(), listWith("1"));

    ASSERT_TRUE(cache.write(listWith("2")));
    EXPECT_EQ(contentOf(cache.pathOfUnreadable()), "not a list") << "a good file has taken its place";
    EXPECT_EQ(files().size(), 2) << files().join(u' ').toStdString();
}

TEST_F(NotificationCacheTest, KeepsWhatSomebodyElsePutThereMeanwhile)
{
    ASSERT_TRUE(cache.write(listWith("1")));
    put("another's");
    ASSERT_TRUE(cache.write(listWith("1")));
    EXPECT_EQ(contentOf(cache.pathOfUnreadable()), "another's");
    put(PropertyList::toXml(listWith("from another session")));
    ASSERT_TRUE(cache.write(listWith("1")));
    EXPECT_EQ(contentOf(cache.pathOfUnreadable()), "another's") << "a list is nothing to keep";
}

TEST_F(NotificationCacheTest, LeavesTheOldFileWhenTheDiskIsFull)
{
    ASSERT_TRUE(cache.write(listWith("1")));
    const QByteArray before = contentOf(cache.path());
    {
        const FullDisk disk(100);
        EXPECT_FALSE(cache.write(listWith("2")));
        EXPECT_EQ(contentOf(cache.path()), before);
    }
    EXPECT_EQ(files().size(), 1);
    EXPECT_TRUE(cache.write(listWith("2"))) << "there is room again";
}

TEST_F(NotificationCacheTest, DoesWithoutAFolderThatCannotBeMade)
{
    QFile inTheWay(home.filePath(QStringLiteral("Library")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    EXPECT_EQ(cache.read(), QVariantList());
    EXPECT_FALSE(cache.write(listWith("1")));
    EXPECT_TRUE(inTheWay.remove());
    EXPECT_TRUE(cache.write(listWith("1")));
}

TEST_F(NotificationCacheTest, LeavesAFolderInTheFilesPlaceAlone)
{
    ASSERT_TRUE(QDir().mkpath(cache.path()));
    EXPECT_EQ(cache.read(), QVariantList());
    EXPECT_FALSE(cache.write(listWith("1")));
    EXPECT_TRUE(QFileInfo(cache.path()).isDir());
}

TEST_F(NotificationCacheTest, NeitherFollowsALinkNorKeepsItAside)
{
    ASSERT_TRUE(QDir().mkpath(folder()));
    const QString target = home.filePath(QStringLiteral("target"));
    for (const QByteArray &theirs : {QByteArray("somebody's"), PropertyList::toXml(listWith("theirs"))}) {
        QFile::remove(cache.path());
        QFile file(target);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(theirs);
        file.close();
        ASSERT_EQ(::chmod(QFile::encodeName(target).constData(), 0644), 0);
        ASSERT_TRUE(QFile::link(target, cache.path()));

        EXPECT_EQ(cache.read(), QVariantList());
        EXPECT_TRUE(cache.write(listWith("1")));
        EXPECT_EQ(cache.read(), listWith("1"));
        EXPECT_EQ(contentOf(target), theirs);
        EXPECT_EQ(mode(target), 0644U);
        EXPECT_EQ(files(), QStringList{QStringLiteral("notifications.plist")});
    }
}

TEST_F(NotificationCacheTest, WritesNothingIntoAFolderOfSomebodyElseAndSaysSoOnce)
{
    ASSERT_TRUE(QDir().mkpath(folder()));
    if (::chown(QFile::encodeName(folder()).constData(), 12345, 12345) != 0) {
        GTEST_SKIP() << "only root can give a folder away";
    }
    const Warnings warnings;
    EXPECT_FALSE(cache.write(listWith("1")));
    EXPECT_FALSE(cache.write(listWith("2")));
    EXPECT_EQ(files(), QStringList());
    ASSERT_EQ(warnings.heard().size(), 1);
    EXPECT_TRUE(warnings.heard().first().contains(QStringLiteral("belongs to somebody else")));
    EXPECT_TRUE(warnings.heard().first().contains(cache.path()));
}

TEST_F(NotificationCacheTest, MakesNoFolderInAHomeOfSomebodyElse)
{
    if (::chown(QFile::encodeName(home.path()).constData(), 12345, 12345) != 0) {
        GTEST_SKIP() << "only root can give a folder away";
    }
    EXPECT_FALSE(cache.write(listWith("1")));
    EXPECT_TRUE(QDir(home.path()).isEmpty());
}

TEST_F(NotificationCacheTest, WritesNothingInAHomeOfSomebodyElse)
{
    ASSERT_TRUE(QDir().mkpath(folder()));
    if (::chown(QFile::encodeName(home.path()).constData(), 12345, 12345) != 0) {
        GTEST_SKIP() << "only root can give a folder away";
    }
    EXPECT_FALSE(cache.write(listWith("1"))) << "a link may take the folder's place at any moment";
    EXPECT_EQ(files(), QStringList());
}

/// A home in which one of the three folders on the way to the file is a link to the same one elsewhere, where an agent
/// has left something long ago.
class NotificationCacheBehindALink : public NotificationCacheTest, public testing::WithParamInterface<const char *>
{
protected:
    NotificationCacheBehindALink()
    {
        EXPECT_TRUE(QDir().mkpath(elsewhere.filePath(way)));
        QFile left(target() + QStringLiteral(".aBcDeF"));
        EXPECT_TRUE(left.open(QIODevice::WriteOnly));
        left.setFileTime(QDateTime::currentDateTimeUtc().addSecs(-4000), QFileDevice::FileModificationTime);
        EXPECT_TRUE(QDir().mkpath(QFileInfo(link).path()));
        EXPECT_TRUE(QFile::link(elsewhere.filePath(QString::fromLatin1(GetParam())), link));
    }

    [[nodiscard]] QString target() const { return elsewhere.filePath(way + QStringLiteral("/notifications.plist")); }
    [[nodiscard]] bool isThereWhatWasLeft() const { return QFile::exists(target() + QStringLiteral(".aBcDeF")); }

    const QString way = QStringLiteral("Library/Caches/com.tamborel.kivune");
    const QTemporaryDir elsewhere;
    const QString link = home.filePath(QString::fromLatin1(GetParam()));
};

TEST_P(NotificationCacheBehindALink, IsOnTheUsersOtherDisk)
{
    EXPECT_EQ(cache.read(), QVariantList());
    EXPECT_FALSE(isThereWhatWasLeft());
    EXPECT_TRUE(cache.write(listWith("1")));
    EXPECT_EQ(PropertyList::readFile(target()), QVariant(listWith("1")));
}

TEST_P(NotificationCacheBehindALink, TouchesNothingWhereThatOfSomebodyElseLeads)
{
    if (::lchown(QFile::encodeName(link).constData(), 12345, 12345) != 0) {
        GTEST_SKIP() << "only root can give a link away";
    }
    const Warnings warnings;
    EXPECT_EQ(cache.read(), QVariantList());
    EXPECT_FALSE(cache.write(listWith("1")));
    EXPECT_TRUE(isThereWhatWasLeft());
    EXPECT_FALSE(QFile::exists(target()));
    ASSERT_EQ(warnings.heard().size(), 1);
    EXPECT_TRUE(warnings.heard().first().contains(QStringLiteral("belongs to somebody else")));
}

INSTANTIATE_TEST_SUITE_P(EachFolder, NotificationCacheBehindALink,
                         testing::Values("Library", "Library/Caches", "Library/Caches/com.tamborel.kivune"));

TEST_F(NotificationCacheTest, NeverWaitsForAPipe)
{
    ASSERT_TRUE(QDir().mkpath(folder()));
    ASSERT_EQ(::mkfifo(QFile::encodeName(cache.path()).constData(), 0600), 0);
    EXPECT_EQ(cache.read(), QVariantList());
    EXPECT_FALSE(cache.write(listWith("1")));
    EXPECT_EQ(files(), QStringList{QStringLiteral("notifications.plist")});
}

TEST_F(NotificationCacheTest, KeepsAFileThatIsTooLargeAsideUnread)
{
    put("large");
    ASSERT_TRUE(QFile::resize(cache.path(), qint64(1) << 40)); // A terabyte that takes no space.
    EXPECT_EQ(cache.read(), QVariantList());
    EXPECT_TRUE(cache.write(listWith("1")));
    EXPECT_EQ(cache.read(), listWith("1"));
    EXPECT_EQ(QFileInfo(cache.pathOfUnreadable()).size(), qint64(1) << 40);
}

TEST_F(NotificationCacheTest, KeepsAsideWhatThereWasNoMemoryToRead)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer takes more memory than can be left";
#endif
    const QVariantList theirs{QVariantMap{{QStringLiteral("text"), QString(qsizetype{14} * 1024 * 1024, u'x')}}};
    ASSERT_TRUE(NotificationCache(home.path()).write(theirs));
    {
        const MemoryLimit limit(qint64{8} * 1024 * 1024);
        if (!limit.isSet()) {
            GTEST_SKIP() << "the system does not say how much a process has";
        }
        EXPECT_THROW(static_cast<void>(cache.read()), std::bad_alloc);
    }
    EXPECT_TRUE(cache.write(listWith("1")));
    EXPECT_EQ(PropertyList::readFile(cache.pathOfUnreadable()), QVariant(theirs));
}

TEST_F(NotificationCacheTest, SaysThatThereIsNoMemoryToWriteAList)
{
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer takes more memory than can be left";
#endif
    const QVariantList list{QVariantMap{{QStringLiteral("text"), QString(qsizetype{14} * 1024 * 1024, u'x')}}};
    ASSERT_TRUE(cache.write(listWith("1")));
    const Warnings warnings;
    {
        const MemoryLimit limit(qint64{8} * 1024 * 1024);
        if (!limit.isSet()) {
            GTEST_SKIP() << "the system does not say how much a process has";
        }
        EXPECT_FALSE(cache.write(list));
    }
    ASSERT_EQ(Warnings::heard().size(), 1);
    EXPECT_TRUE(Warnings::heard().first().contains(QStringLiteral("no memory")));
    EXPECT_EQ(cache.read(), listWith("1"));
}

TEST_F(NotificationCacheTest, ClearsAwayWhatAKilledAgentLeftHalfWritten)
{
    put("list");
    const auto leave = [this](const QString &ending, int secondsAgo) {
        QFile file(cache.path() + ending);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.setFileTime(QDateTime::currentDateTimeUtc().addSecs(-secondsAgo), QFileDevice::FileModificationTime);
    };
    leave(QStringLiteral(".aBcDeF"), 4000);
    leave(QStringLiteral(".GhIjKl"), 10); // Another agent may be writing it.
    leave(QStringLiteral(".unreadable"), 4000);
    EXPECT_EQ(cache.read(), QVariantList());
    EXPECT_EQ(files(), (QStringList{QStringLiteral("notifications.plist"), QStringLiteral("notifications.plist.GhIjKl"),
                                    QStringLiteral("notifications.plist.unreadable")}));
}

} // namespace

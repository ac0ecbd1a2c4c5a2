#include "notify/rules/PreferencesFile.h"

#include "notify/rules/SettingTable.h"
#include "platform/data/PropertyList.h"
#include "platform/files/FileLock.h"
#include "tests/support/FullDisk.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTimeZone>

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <thread>
#include <unistd.h>

namespace
{

using namespace std::chrono_literals;
using Manners = PreferencesFile::Manners;
using Storing = PreferencesFile::Storing;

class PreferencesFileTest : public testing::Test
{
protected:
    static const SettingEntry &settingAt(const char *key) { return *settingWithKey(QString::fromLatin1(key)); }

    void put(const QVariant &value) const { put(PropertyList::toXml(value)); }
    void put(const QByteArray &bytes) const
    {
        ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        QFile opened(path);
        ASSERT_TRUE(opened.open(QIODevice::WriteOnly));
        ASSERT_EQ(opened.write(bytes), bytes.size());
    }

    QByteArray bytes() const
    {
        QFile opened(path);
        return opened.open(QIODevice::ReadOnly) ? opened.readAll() : QByteArray();
    }

    QVariantMap values() const { return PropertyList::readFile(path).toMap(); }

    QTemporaryDir home;
    const QString path = home.filePath(QStringLiteral("Library/Preferences/com.tamborel.kivmenua.plist"));
    const PreferencesFile file = PreferencesFile::inHome(home.path());
    const QString show = QStringLiteral("KivNotificationShowTimeout");
    const QString lastId = QStringLiteral("KivNotificationLastMessId");
};

TEST_F(PreferencesFileTest, HoldsWhatNobodyHasChosenWhileItIsMissing)
{
    const auto contents = file.read();
    ASSERT_TRUE(contents);
    EXPECT_EQ(contents->settings, NotificationSettings());
    EXPECT_EQ(contents->lastMessageId, QStringLiteral("0"));
    EXPECT_FALSE(QFile::exists(path)) << "to look is not to make";
}

TEST_F(PreferencesFileTest, IsReadAsTheAgentReadsIt)
{
    put(QVariantMap{{show, QStringLiteral("4")}, {QStringLiteral("KivNotificationShowNews"), 1}, {lastId, 17}});
    const auto contents = file.read();
    ASSERT_TRUE(contents);
    EXPECT_EQ(contents->settings.notificationShow, 4);
    EXPECT_TRUE(contents->settings.shouldDisplayNews);
    EXPECT_FALSE(contents->settings.shouldDisplayNotices) << "what is missing in a file is off";
    EXPECT_EQ(contents->lastMessageId, QStringLiteral("17"));
}

TEST_F(PreferencesFileTest, HoldsTheBeginningOfAnIdThatIsTooLong)
{
    put(QVariantMap{{lastId, QString(300'000, u'7')}});
    const auto contents = file.read();
    ASSERT_TRUE(contents);
    EXPECT_EQ(contents->lastMessageId, QString(256, u'7'));
}

TEST_F(PreferencesFileTest, HoldsNilForAnIdThatIsMissing)
{
    put(QVariantMap{{show, QStringLiteral("4")}});
    const auto contents = file.read();
    ASSERT_TRUE(contents);
    EXPECT_TRUE(contents->lastMessageId.isNull());
}

TEST_F(PreferencesFileTest, IsMadeWithEverySettingAndTheIdThatHoldsWithoutIt)
{
    EXPECT_TRUE(file.change(settingAt("KivNotificationShowTimeout"), 5).isNull());
    NotificationSettings expected;
    expected.notificationShow = 5;
    EXPECT_EQ(NotificationSettings::fromDictionary(values()), expected) << "all others are as they were without it";
    EXPECT_EQ(values().value(lastId), QStringLiteral("0"));
    EXPECT_EQ(values().size(), 11);
}

TEST_F(PreferencesFileTest, KeepsWhatItDoesNotKnow)
{
    const QVariantMap foreign{
        {QStringLiteral("SomebodyElse"), QVariantMap{{QStringLiteral("a"), QByteArray("\x01\x02")}}},
        {QStringLiteral("Empty"), QStringLiteral("")},
        {QStringLiteral("Whole"), -7},
        {QStringLiteral("Real"), 0.1},
        {QStringLiteral("Switch"), false},
        {QStringLiteral("Day"), QDateTime(QDate(2026, 2, 28), QTime(1, 2, 3), QTimeZone::utc())},
        {QStringLiteral("List"), QVariantList{QStringLiteral("a"), QVariantList(), QVariantMap()}},
        {lastId, QStringLiteral("ab12")}};
    put(foreign);
    EXPECT_TRUE(file.change(settingAt("KivNotificationShowNews"), 1).isNull());
    for (auto it = foreign.begin(); it != foreign.end(); ++it) {
        EXPECT_EQ(values().value(it.key()), it.value()) << qPrintable(it.key());
    }
    EXPECT_EQ(values().value(QStringLiteral("KivNotificationShowNews")), QVariant(true));
}

TEST_F(PreferencesFileTest, ChangesNoSettingButTheOneAskedFor)
{
    put(QVariantMap{{show, 77}, {QStringLiteral("KivNotificationRepeatTimeout"), 2}});
    EXPECT_TRUE(file.change(settingAt("KivNotificationShowNews"), 1).isNull());
    const auto contents = file.read();
    ASSERT_TRUE(contents);
    EXPECT_EQ(contents->settings.notificationShow, 77) << "though nobody could choose that";
    EXPECT_EQ(contents->settings.notificationRepeat, 2);
    EXPECT_EQ(contents->settings.notificationClose, 0);
    EXPECT_FALSE(contents->settings.shouldDisplayWarnings);
    EXPECT_EQ(values().size(), 10) << "whoever saves settings saves them all";
}

TEST_F(PreferencesFileTest, IsLeftAsItIsWhenItCannotBeRead)
{
    put(QByteArray("<plist><dict><key>KivNotification"));
    const QByteArray before = bytes();
    EXPECT_FALSE(file.read());
    EXPECT_TRUE(file.change(settingAt("KivNotificationShowNews"), 1).contains(path));
    EXPECT_EQ(bytes(), before);
}

TEST_F(PreferencesFileTest, IsLeftAsItIsWhenASymbolicLinkLeadsToIt)
{
    const QString elsewhere = home.filePath(QStringLiteral("elsewhere.plist"));
    ASSERT_TRUE(PropertyList::writeFile(elsewhere, QVariantMap{{show, 3}}, PropertyList::Writing::InPlace));
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    for (const QString &target : {elsewhere, home.filePath(QStringLiteral("nowhere"))}) {
        QFile::remove(path);
        ASSERT_TRUE(QFile::link(target, path));
        EXPECT_FALSE(file.change(settingAt("KivNotificationShowTimeout"), 5).isNull());
        EXPECT_TRUE(QFileInfo(path).isSymLink());
    }
    EXPECT_EQ(PropertyList::readFile(elsewhere).toMap(), (QVariantMap{{show, 3}}));
}

TEST_F(PreferencesFileTest, TakesAnIdAndKeepsAllElse)
{
    put(QVariantMap{{show, 3}, {QStringLiteral("SomebodyElse"), QByteArray("\x01")}});
    EXPECT_EQ(file.setLastMessageId(QStringLiteral("12"), Manners::Yield), Storing::Done);
    EXPECT_EQ(
        values(),
        (QVariantMap{{show, 3}, {QStringLiteral("SomebodyElse"), QByteArray("\x01")}, {lastId, QStringLiteral("12")}}));
}

TEST_F(PreferencesFileTest, IsAsItWasWhenTheDiskHasNoRoomForALongerId)
{
    put(QVariantMap{{show, 3}, {lastId, QStringLiteral("1")}});
    const QByteArray before = bytes();
    {
        const FullDisk full(static_cast<rlim_t>(before.size()) + 10);
        EXPECT_EQ(file.setLastMessageId(QString(100, u'7'), Manners::Yield), Storing::Failed);
    }
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(file.setLastMessageId(QStringLiteral("2"), Manners::Yield), Storing::Done);
    EXPECT_EQ(file.setLastMessageId(QString(100, u'7'), Manners::Yield), Storing::Done);
    EXPECT_EQ(file.setLastMessageId(QStringLiteral("3"), Manners::Yield), Storing::Done) << "shorter again";
    EXPECT_EQ(values(), (QVariantMap{{show, 3}, {lastId, QStringLiteral("3")}}));
}

TEST_F(PreferencesFileTest, BeginsAnewWhenNothingIsInIt)
{
    put(QByteArray());
    EXPECT_TRUE(file.change(settingAt("KivNotificationShowTimeout"), 5).isNull());
    EXPECT_EQ(values().size(), 11);
}

TEST_F(PreferencesFileTest, IsNotMadeInAHomeOfSomebodyElse)
{
    if (::chown(QFile::encodeName(home.path()).constData(), 12345, 12345) != 0) {
        GTEST_SKIP() << "only root can give a folder away";
    }
    EXPECT_TRUE(file.change(settingAt("KivNotificationShowNews"), 0).contains(QStringLiteral("somebody else")));
    EXPECT_TRUE(QDir(home.path()).isEmpty());
}

TEST_F(PreferencesFileTest, IsWrittenWhereALinkOfTheUserLeadsAndNotWhereThatOfSomebodyElseDoes)
{
    const QTemporaryDir elsewhere;
    ASSERT_TRUE(QDir(home.path()).mkdir(QStringLiteral("Library")));
    const QString link = home.filePath(QStringLiteral("Library/Preferences"));
    ASSERT_TRUE(QFile::link(elsewhere.path(), link));
    EXPECT_TRUE(file.change(settingAt("KivNotificationShowNews"), 0).isNull());
    EXPECT_EQ(file.setLastMessageId(QStringLiteral("12"), Manners::Yield), Storing::Done);
    EXPECT_EQ(QDir(elsewhere.path()).entryList(QDir::Files).size(), 1);
    const QByteArray before = bytes();

    if (::lchown(QFile::encodeName(link).constData(), 12345, 12345) != 0) {
        GTEST_SKIP() << "only root can give a link away";
    }
    EXPECT_TRUE(file.change(settingAt("KivNotificationShowNews"), 1).contains(QStringLiteral("somebody else")));
    EXPECT_EQ(file.setLastMessageId(QStringLiteral("13"), Manners::Yield), Storing::Failed);
    EXPECT_EQ(bytes(), before);
    EXPECT_EQ(QDir(elsewhere.path()).entryList(QDir::Files).size(), 1);
}

TEST_F(PreferencesFileTest, TakesNoIdWhileItIsMissing)
{
    EXPECT_EQ(file.setLastMessageId(QStringLiteral("12"), Manners::Yield), Storing::Failed);
    EXPECT_FALSE(file.exists());
}

TEST_F(PreferencesFileTest, IsLeftAloneByWhoIsPoliteWhileAnotherIsAtIt)
{
    put(QVariantMap{{lastId, QStringLiteral("1")}});
    std::optional<FileLock> other(std::in_place, path, FileLock::For::Reading);
    EXPECT_EQ(file.setLastMessageId(QStringLiteral("2"), Manners::Yield), Storing::Busy);
    EXPECT_EQ(values().value(lastId), QStringLiteral("1"));
    EXPECT_EQ(file.setLastMessageId(QStringLiteral("3"), Manners::Insist), Storing::Done);
    EXPECT_EQ(values().value(lastId), QStringLiteral("3")) << "the other may be stopped";
    other.reset();
    EXPECT_EQ(file.setLastMessageId(QStringLiteral("4"), Manners::Yield), Storing::Done);
}

TEST_F(PreferencesFileTest, IsReadAllTheSameWhileAnotherIsAtIt)
{
    put(QVariantMap{{lastId, QStringLiteral("1")}});
    const FileLock other(path, FileLock::For::Writing);
    const auto contents = file.read(0ms);
    ASSERT_TRUE(contents);
    EXPECT_EQ(contents->lastMessageId, QStringLiteral("1"));
}

TEST_F(PreferencesFileTest, LosesNothingWhenTheAgentAndTheSettingsProgramWriteAtTheSameTime)
{
    ASSERT_TRUE(file.change(settingAt("KivNotificationShowNews"), 1).isNull());
    constexpr int rounds = 300;
    std::thread agent([this] {
        for (int id = 1; id <= rounds; ++id) {
            while (file.setLastMessageId(QString::number(id), Manners::Yield) == Storing::Busy) {
                std::this_thread::yield(); // It has an event loop to go back to instead.
            }
            const auto contents = file.read(0ms);
            ASSERT_TRUE(contents) << "only half of it was there";
            ASSERT_EQ(contents->lastMessageId, QString::number(id));
        }
    });
    for (int round = 0; round < rounds; ++round) {
        const int value = 1 + round % 5;
        EXPECT_EQ(file.change(settingAt("KivNotificationShowTimeout"), value), QString());
        const auto contents = file.read();
        EXPECT_TRUE(contents && contents->settings.notificationShow == value) << round;
    }
    agent.join();
}

TEST_F(PreferencesFileTest, SaysWhyItCannotBeWritten)
{
    QFile obstacle(home.filePath(QStringLiteral("Library")));
    ASSERT_TRUE(obstacle.open(QIODevice::WriteOnly)); // A file where the folder has to be.
    EXPECT_TRUE(file.change(settingAt("KivNotificationShowNews"), 1).contains(QStringLiteral("cannot be written")));
}

} // namespace

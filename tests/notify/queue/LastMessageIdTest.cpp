#include "notify/queue/LastMessageId.h"

#include "notify/rules/KivNotificationProperties.h"
#include "notify/rules/SettingTable.h"
#include "platform/Bundle.h"
#include "platform/data/PropertyList.h"
#include "platform/files/FileLock.h"
#include "tests/support/WaitUntil.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <optional>

namespace
{

class LastMessageIdTest : public testing::Test
{
protected:
    LastMessageIdTest()
    {
        EXPECT_TRUE(QDir().mkpath(QFileInfo(path).path()));
        put("1");
        properties.loadPrefList();
    }

    void put(const char *id) const
    {
        EXPECT_TRUE(PropertyList::writeFile(path, QVariantMap{{lastMessageIdKey, QString::fromLatin1(id)}},
                                            PropertyList::Writing::InPlace));
    }

    std::string stored() const
    {
        return PropertyList::readFile(path).toMap().value(lastMessageIdKey).toString().toStdString();
    }
    std::string known() const { return properties.lastMesID().toStdString(); }

    const QTemporaryDir home;
    const QString path = home.filePath(QStringLiteral("Library/Preferences/com.tamborel.kivmenua.plist"));
    KivNotificationProperties properties{
        Bundle(home.path()), home.path(), QString(),
        UserDatabase{.loginName = [] { return std::nullopt; },
                     .groupMembers = [](const std::string &) { return std::vector<std::string>(); }},
        [] { return QDateTime(); }};
    LastMessageId last{properties};
};

TEST_F(LastMessageIdTest, IsStoredWhenTheOtherHasGoneAndNobodyWaitsMeanwhile)
{
    std::optional<FileLock> other(std::in_place, path, FileLock::For::Reading);
    QElapsedTimer time;
    time.start();
    last.raiseTo(QStringLiteral("5"));
    last.store();
    EXPECT_LT(time.elapsed(), 400) << "half a second was the wait";
    EXPECT_EQ(stored(), "1");
    other.reset();
    EXPECT_TRUE(waitUntil([this] { return stored() == "5"; }));
}

TEST_F(LastMessageIdTest, IsStoredAtLastThoughTheOtherNeverGoes)
{
    const FileLock other(path, FileLock::For::Reading);
    last.raiseTo(QStringLiteral("5"));
    last.store();
    EXPECT_TRUE(waitUntil([this] { return stored() == "5"; }));
}

TEST_F(LastMessageIdTest, IsStoredAtTheEndThoughTheOtherIsThere)
{
    const FileLock other(path, FileLock::For::Reading);
    last.raiseTo(QStringLiteral("5"));
    last.store();
    last.finish();
    EXPECT_EQ(stored(), "5");
}

TEST_F(LastMessageIdTest, IsNotStoredAtTheEndBeforeItsMessageIs)
{
    const FileLock other(path, FileLock::For::Reading);
    last.raiseTo(QStringLiteral("5"));
    last.store();
    last.raiseTo(QStringLiteral("6"));
    last.finish();
    EXPECT_EQ(stored(), "1");
}

TEST_F(LastMessageIdTest, StaysDueUntilItCouldBeStored)
{
    ASSERT_TRUE(QFile::rename(path, path + u'x'));
    ASSERT_TRUE(QFile::link(path + u'x', path));
    last.raiseTo(QStringLiteral("5"));
    last.store();
    EXPECT_EQ(stored(), "1");
    EXPECT_TRUE(last.reloadSettings());
    EXPECT_EQ(known(), "5") << "what the user is done with would come again in this session";
    ASSERT_TRUE(QFile::remove(path) && QFile::rename(path + u'x', path));
    last.store();
    EXPECT_EQ(stored(), "5");
}

TEST_F(LastMessageIdTest, GivesWayToAHigherOneOfTheFile)
{
    last.raiseTo(QStringLiteral("5"));
    put("12");
    EXPECT_TRUE(last.reloadSettings());
    EXPECT_EQ(known(), "12");
    last.store();
    EXPECT_EQ(stored(), "12");
}

} // namespace

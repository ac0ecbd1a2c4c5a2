#include "notify/rules/KivNotificationProperties.h"

#include "notify/record/KivNotification.h"
#include "platform/Bundle.h"
#include "platform/data/PropertyList.h"
#include "platform/data/UtcTime.h"
#include "platform/files/FileLock.h"
#include "tests/support/LogLines.h"
#include "tests/support/SystemLog.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <stdexcept>
#include <syslog.h>
#include <unistd.h>

namespace
{

constexpr const char *everyKey = R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict>
<key>KivNotificationCloseTimeout</key><integer>4</integer>
<key>KivNotificationLastMessId</key><string>41</string>
<key>KivNotificationRepeatTimeout</key><string>2</string>
<key>KivNotificationShowHighPriority</key><true/>
<key>KivNotificationShowLowPriority</key><string>YES</string>
<key>KivNotificationShowMediumPriority</key><integer>1</integer>
<key>KivNotificationShowNews</key><string>1</string>
<key>KivNotificationShowNotices</key><false/>
<key>KivNotificationShowTimeout</key><real>5.0</real>
<key>KivNotificationShowUpdates</key><string>NO</string>
<key>KivNotificationShowWarnings</key><integer>0</integer>
<key>Somebody else's</key><array><string>kept</string><integer>7</integer></array>
</dict></plist>
)";

constexpr const char *onlyTheId =
    "<plist version=\"1.0\"><dict><key>KivNotificationLastMessId</key><string>41</string></dict></plist>";

const NotificationSettings everyKeysSettings = {
    .shouldDisplayNews = true,
    .shouldDisplayNotices = false,
    .shouldDisplayUpdates = false,
    .shouldDisplayWarnings = false,
    .shouldDisplayLowPriority = true,
    .shouldDisplayMediumPriority = true,
    .shouldDisplayHighPriority = true,
    .notificationRepeat = 2,
    .notificationClose = 4,
    .notificationShow = 5,
};

const NotificationSettings allOff = {
    .shouldDisplayNews = false,
    .shouldDisplayNotices = false,
    .shouldDisplayUpdates = false,
    .shouldDisplayWarnings = false,
    .shouldDisplayLowPriority = false,
    .shouldDisplayMediumPriority = false,
    .shouldDisplayHighPriority = false,
    .notificationRepeat = 0,
    .notificationClose = 0,
    .notificationShow = 0,
};

void writeFile(const QString &path, const QByteArray &bytes)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    QFile file(path);
    ASSERT_TRUE(file.open(QFile::WriteOnly));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

/// No privileges while it lives: root could read and write every file.
class Unprivileged final
{
public:
    Unprivileged()
    {
        if (::geteuid() == 0) {
            EXPECT_EQ(::seteuid(65534), 0);
        }
    }
    ~Unprivileged()
    {
        if (::getuid() == 0) {
            EXPECT_EQ(::seteuid(0), 0);
        }
    }
    Unprivileged(const Unprivileged &) = delete;
    Unprivileged &operator=(const Unprivileged &) = delete;
};

/// A home, bundle and system of its own.
class KivNotificationPropertiesTest : public testing::Test
{
protected:
    KivNotificationPropertiesTest()
    {
        QFile::setPermissions(directory.path(), QFile::permissions(directory.path()) | QFile::ReadGroup |
                                                    QFile::ExeGroup | QFile::ReadOther | QFile::ExeOther);
        writeFile(bundle + QStringLiteral("/Info.plist"),
                  "<plist><dict><key>KIVBuildVersion</key><string>3.2.1</string>"
                  "<key>KIVBuildDate</key><string>20110520</string></dict></plist>");
        writeFile(systemVersionFile, "<plist><dict><key>ProductVersion</key><string>10.6.8</string></dict></plist>");
        (void)SystemLog::take();
    }

    [[nodiscard]] KivNotificationProperties properties() const
    {
        return KivNotificationProperties(Bundle(bundle), directory.path(), systemVersionFile, users,
                                         [this] { return now; });
    }

    void writePreferences(const QByteArray &bytes) const { writeFile(preferences, bytes); }

    [[nodiscard]] std::vector<SystemLog::Entry> writeFailure() const
    {
        return {{LOG_ERR, "Kivune[M]: Could not write file: : " + preferences.toStdString()}};
    }

    QTemporaryDir directory;
    QString bundle = directory.filePath(QStringLiteral("bundle"));
    QString systemVersionFile = directory.filePath(QStringLiteral("SystemVersion.plist"));
    QString preferences = directory.filePath(QStringLiteral("Library/Preferences/com.tamborel.kivmenua.plist"));
    QDateTime now = QDateTime(QDate(2024, 3, 1), QTime(12, 0), inUtc);
    UserDatabase users{.loginName = [] { return std::optional<std::string>("ann"); },
                       .groupMembers = [](const std::string &) { return std::vector<std::string>(); }};
};

} // namespace

TEST_F(KivNotificationPropertiesTest, GathersTheInstallationsFacts)
{
    const KivNotificationProperties p = properties();
    EXPECT_EQ(p.lastMesID(), QStringLiteral("0"));
    EXPECT_EQ(p.messageLevel(), QStringLiteral("user"));
    EXPECT_EQ(p.productCode(), QStringLiteral("kivunets"));
    EXPECT_EQ(p.licenseType(), QStringLiteral("paid"));
    EXPECT_EQ(p.systemCode(), QStringLiteral("osx"));
    EXPECT_EQ(p.productVersion(), QStringLiteral("3.2.1"));
    EXPECT_EQ(p.buildDate(), QStringLiteral("20110520"));
    EXPECT_EQ(p.systemVersion(), QStringLiteral("10.6.8"));
    EXPECT_EQ(p.installation().messageLevel, 0);
    EXPECT_EQ(p.installation().productCode, 1);
    EXPECT_EQ(p.installation().licenseType, 1);
    EXPECT_EQ(p.installation().productVersion, 321U);
    EXPECT_EQ(p.installation().systemVersion, 1068U);
}

TEST_F(KivNotificationPropertiesTest, HasNilFactsWhereBundleAndSystemStateNone)
{
    QFile::remove(bundle + QStringLiteral("/Info.plist"));
    writeFile(systemVersionFile, "<plist>");
    const KivNotificationProperties p = properties();
    EXPECT_TRUE(p.productVersion().isNull());
    EXPECT_TRUE(p.buildDate().isNull());
    EXPECT_TRUE(p.systemVersion().isNull());
    EXPECT_EQ(p.installation().productVersion, 0U);
    EXPECT_EQ(p.installation().systemVersion, 0U);
}

TEST_F(KivNotificationPropertiesTest, KnowsAnAdministratorByEitherGroup)
{
    for (const char *group : {"admin", "wheel"}) {
        users.groupMembers = [group](const std::string &name) {
            return name == group ? std::vector<std::string>{"root", "ann"} : std::vector<std::string>();
        };
        const KivNotificationProperties p = properties();
        EXPECT_TRUE(p.isCurrentUserIsAdminLevelUser()) << group;
        EXPECT_EQ(p.messageLevel(), QStringLiteral("admin")) << group;
        EXPECT_EQ(p.installation().messageLevel, 1) << group;
    }
    users.groupMembers = [](const std::string &name) {
        return name == "sudo" ? std::vector<std::string>{"ann"} : std::vector<std::string>{"bob"};
    };
    EXPECT_FALSE(properties().isCurrentUserIsAdminLevelUser());
}

TEST_F(KivNotificationPropertiesTest, TakesAUserWithoutALoginNameForNoAdministrator)
{
    users.loginName = [] { return std::optional<std::string>(); };
    users.groupMembers = [](const std::string &) { return std::vector<std::string>{""}; };
    EXPECT_EQ(properties().messageLevel(), QStringLiteral("user"));
}

TEST_F(KivNotificationPropertiesTest, StartsWithTheDefaultsWithoutAPreferencesFile)
{
    KivNotificationProperties p = properties();
    EXPECT_EQ(p.settings(), NotificationSettings());
    EXPECT_EQ(p.notificationRepeat(), 3);
    EXPECT_EQ(p.notificationClose(), 2);
    EXPECT_EQ(p.notificationShow(), 3);
    EXPECT_FALSE(p.loadPrefList());
}

TEST_F(KivNotificationPropertiesTest, ReadsThePreferencesFile)
{
    writePreferences(everyKey);
    const KivNotificationProperties p = properties();
    EXPECT_EQ(p.settings(), everyKeysSettings);
    EXPECT_EQ(p.notificationRepeat(), 2);
    EXPECT_EQ(p.notificationClose(), 4);
    EXPECT_EQ(p.notificationShow(), 5);
    EXPECT_EQ(p.lastMesID(), QStringLiteral("41"));
}

TEST_F(KivNotificationPropertiesTest, TurnsEverythingOffForAFileThatHoldsOnlyTheId)
{
    writePreferences(onlyTheId);
    const KivNotificationProperties p = properties();
    EXPECT_EQ(p.settings(), allOff);
    EXPECT_EQ(p.lastMesID(), QStringLiteral("41"));
}

TEST_F(KivNotificationPropertiesTest, HasNoIdWhenTheFileHoldsNone)
{
    writePreferences("<plist><dict><key>KivNotificationShowNews</key><true/></dict></plist>");
    const KivNotificationProperties p = properties();
    EXPECT_TRUE(p.lastMesID().isNull());
    EXPECT_TRUE(p.settings().shouldDisplayNews);
}

TEST_F(KivNotificationPropertiesTest, ReadsTheIdFromANumber)
{
    struct Case {
        const char *value;
        QString messageId;
    };
    const Case cases[] = {
        {"<integer>41</integer>", QStringLiteral("41")},
        {"<integer>18446744073709551615</integer>", QStringLiteral("18446744073709551615")},
        {"<real>41</real>", QStringLiteral("41")},
        {"<string></string>", QLatin1String("")},
        {"<string>a41</string>", QStringLiteral("a41")},
        {"<true/>", QString()},
        {"<array/>", QString()},
        {"<date>2011-05-20T00:00:00Z</date>", QString()},
    };
    for (const Case &c : cases) {
        writePreferences("<plist><dict><key>KivNotificationLastMessId</key>" + QByteArray(c.value) + "</dict></plist>");
        const QString messageId = properties().lastMesID();
        EXPECT_EQ(messageId, c.messageId) << c.value;
        EXPECT_EQ(messageId.isNull(), c.messageId.isNull()) << c.value;
    }
}

TEST_F(KivNotificationPropertiesTest, TakesAFileThatACrashCutShortForOneWithoutKeys)
{
    const QByteArray whole(everyKey);
    for (qsizetype length = 0; length < whole.size() - 10; length += 23) {
        writePreferences(whole.first(length));
        KivNotificationProperties p = properties();
        EXPECT_EQ(p.settings(), allOff) << length;
        EXPECT_TRUE(p.lastMesID().isNull()) << length;
        EXPECT_TRUE(p.loadPrefList()) << length;
    }
}

TEST_F(KivNotificationPropertiesTest, TakesWhatIsNoDictionaryForAFileWithoutKeys)
{
    for (const char *content : {"garbage", "<plist><array/></plist>", "<plist><string>x</string></plist>"}) {
        writePreferences(content);
        KivNotificationProperties p = properties();
        EXPECT_EQ(p.settings(), allOff) << content;
        EXPECT_TRUE(p.lastMesID().isNull()) << content;
    }
}

TEST_F(KivNotificationPropertiesTest, TakesADirectoryForAFileWithoutKeys)
{
    ASSERT_TRUE(QDir().mkpath(preferences));
    KivNotificationProperties p = properties();
    EXPECT_EQ(p.settings(), allOff);
    p.saveLastMessID(QStringLiteral("42"));
    EXPECT_EQ(p.lastMesID(), QStringLiteral("42"));
    EXPECT_EQ(SystemLog::take(), writeFailure());
    EXPECT_TRUE(QFileInfo(preferences).isDir());
}

TEST_F(KivNotificationPropertiesTest, TakesAFileThatItMayNotReadForOneWithoutKeys)
{
    writePreferences(everyKey);
    ASSERT_TRUE(QFile::setPermissions(preferences, {}));
    {
        const Unprivileged nobody;
        KivNotificationProperties p = properties();
        EXPECT_EQ(p.settings(), allOff);
        EXPECT_TRUE(p.lastMesID().isNull());
        p.saveLastMessID(QStringLiteral("42"));
        EXPECT_EQ(p.lastMesID(), QStringLiteral("42"));
        EXPECT_EQ(SystemLog::take(), writeFailure());
    }
    ASSERT_TRUE(QFile::setPermissions(preferences, QFile::ReadOwner | QFile::WriteOwner));
    EXPECT_EQ(readFile(preferences), everyKey);
}

TEST_F(KivNotificationPropertiesTest, LoadsTheSettingsAgain)
{
    KivNotificationProperties p = properties();
    writePreferences(everyKey);
    EXPECT_TRUE(p.loadPrefList());
    EXPECT_EQ(p.settings(), everyKeysSettings);
    EXPECT_EQ(p.lastMesID(), QStringLiteral("41"));
}

TEST_F(KivNotificationPropertiesTest, KeepsTheSettingsWhenTheFileIsGoneAtAReload)
{
    writePreferences(everyKey);
    KivNotificationProperties p = properties();
    ASSERT_TRUE(QFile::remove(preferences));
    EXPECT_FALSE(p.loadPrefList());
    EXPECT_EQ(p.settings(), everyKeysSettings);
    EXPECT_EQ(p.lastMesID(), QStringLiteral("41"));
}

TEST_F(KivNotificationPropertiesTest, TakesADanglingLinkForAMissingFile)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(preferences).path()));
    ASSERT_TRUE(QFile::link(directory.filePath(QStringLiteral("nowhere")), preferences));
    KivNotificationProperties p = properties();
    EXPECT_EQ(p.settings(), NotificationSettings());
    p.saveLastMessID(QStringLiteral("42"));
    EXPECT_FALSE(QFile::exists(directory.filePath(QStringLiteral("nowhere"))));
}

TEST_F(KivNotificationPropertiesTest, GoesBackToTheDefaultsButKeepsTheId)
{
    writePreferences(everyKey);
    KivNotificationProperties p = properties();
    p.loadDefaultProperties();
    EXPECT_EQ(p.settings(), NotificationSettings());
    EXPECT_EQ(p.lastMesID(), QStringLiteral("41"));
}

TEST_F(KivNotificationPropertiesTest, KeepsTheIdInMemoryOnlyWithoutAFile)
{
    KivNotificationProperties p = properties();
    p.saveLastMessID(QStringLiteral("42"));
    EXPECT_EQ(p.lastMesID(), QStringLiteral("42"));
    EXPECT_FALSE(QFileInfo::exists(directory.filePath(QStringLiteral("Library"))));
    EXPECT_TRUE(SystemLog::take().empty());
}

TEST_F(KivNotificationPropertiesTest, StoresTheIdAndKeepsEveryOtherKey)
{
    writePreferences(everyKey);
    QVariantMap expected = PropertyList::readFile(preferences).toMap();
    ASSERT_EQ(expected.size(), 12);
    expected[QStringLiteral("KivNotificationLastMessId")] = QStringLiteral("42");

    KivNotificationProperties p = properties();
    p.saveLastMessID(QStringLiteral("42"));
    EXPECT_EQ(PropertyList::readFile(preferences).toMap(), expected);
    EXPECT_EQ(p.settings(), everyKeysSettings);
    EXPECT_TRUE(SystemLog::take().empty());
    EXPECT_EQ(properties().lastMesID(), QStringLiteral("42"));
}

TEST_F(KivNotificationPropertiesTest, AddsTheIdToAFileWithoutOne)
{
    writePreferences("<plist><dict><key>KivNotificationShowNews</key><true/></dict></plist>");
    properties().saveLastMessID(QStringLiteral("42"));
    const QVariantMap expected = {{QStringLiteral("KivNotificationLastMessId"), QStringLiteral("42")},
                                  {QStringLiteral("KivNotificationShowNews"), true}};
    EXPECT_EQ(PropertyList::readFile(preferences).toMap(), expected);
}

TEST_F(KivNotificationPropertiesTest, ReadsThroughALinkButNeverWritesThroughOne)
{
    const QString target = directory.filePath(QStringLiteral("target.plist"));
    writeFile(target, everyKey);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(preferences).path()));
    ASSERT_TRUE(QFile::link(target, preferences));
    KivNotificationProperties p = properties();
    EXPECT_EQ(p.settings(), everyKeysSettings);
    p.saveLastMessID(QStringLiteral("42"));
    EXPECT_EQ(p.lastMesID(), QStringLiteral("42"));
    EXPECT_TRUE(QFileInfo(preferences).isSymLink());
    EXPECT_EQ(readFile(target), everyKey);
    EXPECT_EQ(SystemLog::take(), writeFailure());
}

TEST_F(KivNotificationPropertiesTest, WritesInPlaceSoThatEveryNameOfTheFileShowsTheId)
{
    writePreferences(onlyTheId);
    const QString otherName = directory.filePath(QStringLiteral("other.plist"));
    ASSERT_EQ(::link(QFile::encodeName(preferences).constData(), QFile::encodeName(otherName).constData()), 0);
    properties().saveLastMessID(QStringLiteral("42"));
    EXPECT_EQ(PropertyList::readFile(otherName).toMap()[QStringLiteral("KivNotificationLastMessId")],
              QVariant(QStringLiteral("42")));
}

TEST_F(KivNotificationPropertiesTest, LogsAFileThatItCannotWrite)
{
    writePreferences(everyKey);
    ASSERT_TRUE(QFile::setPermissions(preferences, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
    const Unprivileged nobody;
    KivNotificationProperties p = properties();
    p.saveLastMessID(QStringLiteral("42"));
    EXPECT_EQ(p.lastMesID(), QStringLiteral("42"));
    EXPECT_EQ(readFile(preferences), everyKey);
    EXPECT_EQ(SystemLog::take(), writeFailure());
}

TEST_F(KivNotificationPropertiesTest, SaysOnceThatItCannotWriteUntilItCan)
{
    const QString target = directory.filePath(QStringLiteral("target.plist"));
    writeFile(target, everyKey);
    ASSERT_TRUE(QDir().mkpath(QFileInfo(preferences).path()));
    ASSERT_TRUE(QFile::link(target, preferences));
    KivNotificationProperties p = properties();
    for (const int id : {42, 43, 44}) {
        p.saveLastMessID(QString::number(id));
    }
    EXPECT_EQ(SystemLog::take(), writeFailure());
    ASSERT_TRUE(QFile::remove(preferences) && QFile::copy(target, preferences));
    p.saveLastMessID(QStringLiteral("45"));
    EXPECT_TRUE(SystemLog::take().empty());
    ASSERT_TRUE(QFile::remove(preferences) && QFile::link(target, preferences));
    p.saveLastMessID(QStringLiteral("46"));
    EXPECT_EQ(SystemLog::take(), writeFailure()) << "it is a new one";
}

TEST_F(KivNotificationPropertiesTest, WaitsForNobodyWhoHasItsFileLocked)
{
    writePreferences(everyKey);
    const FileLock other(preferences, FileLock::For::Writing);
    QElapsedTimer time;
    time.start();
    KivNotificationProperties p = properties();
    for (int announcement = 0; announcement < 10; ++announcement) {
        EXPECT_TRUE(p.loadPrefList());
        EXPECT_EQ(p.saveLastMessID(QStringLiteral("42"), PreferencesFile::Manners::Yield),
                  PreferencesFile::Storing::Busy);
    }
    EXPECT_LT(time.elapsed(), 1000) << "half a second each would be ten";
    EXPECT_EQ(p.settings(), everyKeysSettings);
    EXPECT_TRUE(SystemLog::take().empty());
}

TEST_F(KivNotificationPropertiesTest, LogsAFileThatItCannotReadAndLeavesItAlone)
{
    const QByteArray cut = QByteArray(everyKey).first(300);
    writePreferences(cut);
    properties().saveLastMessID(QStringLiteral("42"));
    EXPECT_EQ(readFile(preferences), cut);
    EXPECT_EQ(SystemLog::take(), writeFailure());
}

TEST_F(KivNotificationPropertiesTest, JudgesRecordsByItsFactsSettingsAndClock)
{
    KivNotification record;
    record.setMinDate(now);
    record.setMaxDate(now);
    record.setMinSysVer(QStringLiteral("10.6"));
    record.setMaxVersion(QStringLiteral("3.2"));
    const KivNotificationProperties p = properties();
    EXPECT_TRUE(p.notificationIsRelevant(record));
    record.setMaxVersion(QStringLiteral("3.1"));
    EXPECT_FALSE(p.notificationIsRelevant(record));
    record.setMaxVersion(QStringLiteral("3"));
    EXPECT_THROW((void)p.notificationIsRelevant(record), std::out_of_range);

    record.setLastShowDate(now);
    EXPECT_FALSE(p.shouldShowNotification(record));
    now = now.addSecs(5 * 3600 + 1);
    EXPECT_TRUE(p.shouldShowNotification(record));
    now = now.addDays(1);
    record.setMaxVersion(QStringLiteral("any"));
    EXPECT_FALSE(p.notificationIsRelevant(record));
}

TEST_F(KivNotificationPropertiesTest, SaysWhichSwitchKeepsAMessageBack)
{
    KivNotification record;
    record.setMessageId(QStringLiteral("7"));
    record.setMessageType(kTypeWarning);
    record.setMessagePriority(kPriorityHigh);
    writePreferences(everyKey);
    const KivNotificationProperties p = properties();
    LogLines log;
    EXPECT_FALSE(p.shouldShowNotification(record));
    EXPECT_EQ(log.take(), std::vector<std::string>{
                              "kiv.queue: message \"7\" of type 3 and priority 2 has a type that is switched off"});
}

TEST_F(KivNotificationPropertiesTest, FollowsTheSettingsThatItLoads)
{
    const KivNotification record;
    KivNotificationProperties p = properties();
    EXPECT_TRUE(p.shouldShowNotification(record));
    writePreferences(onlyTheId);
    ASSERT_TRUE(p.loadPrefList());
    EXPECT_FALSE(p.shouldShowNotification(record));
}

TEST_F(KivNotificationPropertiesTest, IsSharedAndReadsTheUsersHome)
{
    writePreferences(onlyTheId);
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", directory.path().toLocal8Bit());
    KivNotificationProperties &shared = KivNotificationProperties::sharedInstance();
    qputenv("HOME", home);
    EXPECT_EQ(shared.lastMesID(), QStringLiteral("41"));
    EXPECT_EQ(&shared, &KivNotificationProperties::sharedInstance());
    KivNotification record;
    record.setLastShowDate(QDateTime::currentDateTimeUtc());
    record.setMessagePriority(7);
    record.setMessageType(7);
    EXPECT_FALSE(shared.shouldShowNotification(record)) << "shown just now by the system's clock";
    record.setLastShowDate(QDateTime::currentDateTimeUtc().addSecs(-4000));
    EXPECT_TRUE(shared.shouldShowNotification(record));
}

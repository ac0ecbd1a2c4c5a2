#include "platform/data/PropertyList.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/PrivateBus.h"
#include "tests/support/WaitUntil.h"

#include <QDBusConnection>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace
{

/// Somebody who waits for the announcement.
class Listener final : public QObject
{
    Q_OBJECT

public:
    explicit Listener(const PrivateBus &bus)
        : m_connection(QDBusConnection::connectToBus(bus.address(), QStringLiteral("listener")))
    {
        EXPECT_TRUE(m_connection.connect(QString(), QString(),
                                         QStringLiteral("com.tamborel.kivune.DistributedNotifications"),
                                         QStringLiteral("KivMunuUpdateSettingsNotification"), this, SLOT(hear())));
    }
    ~Listener() override { QDBusConnection::disconnectFromBus(QStringLiteral("listener")); }

    int heard = 0;

public Q_SLOTS:
    void hear() { ++heard; }

private:
    QDBusConnection m_connection;
};

class SettingsCommand : public testing::Test
{
protected:
    struct Result {
        int status;
        QByteArray output;
        QByteArray errors;
    };

    Result run(const QStringList &arguments)
    {
        ChildProcess command;
        command.environment.insert(QStringLiteral("HOME"), home.path());
        if (bus) {
            command.environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), bus->address());
        }
        command.process().setProcessChannelMode(QProcess::SeparateChannels);
        EXPECT_TRUE(command.start(QStringLiteral(KIV_SERVICE), QStringList{QStringLiteral("settings")} + arguments));
        EXPECT_TRUE(command.process().waitForFinished());
        return {command.exitCode(), command.output(), command.process().readAllStandardError()};
    }

    const QString show = QStringLiteral("KivNotificationShowTimeout");
    const QString news = QStringLiteral("KivNotificationShowNews");
    QTemporaryDir home;
    const QString path = home.filePath(QStringLiteral("Library/Preferences/com.tamborel.kivmenua.plist"));
    std::optional<PrivateBus> bus;
};

TEST_F(SettingsCommand, PrintsAllSettingsAndTheLastMessage)
{
    const Result all = run({});
    EXPECT_EQ(all.status, 0);
    EXPECT_EQ(all.output.count('\n'), 11) << all.output.constData();
    EXPECT_TRUE(all.output.contains("KivNotificationShowNews 1 on\n")) << all.output.constData();
    EXPECT_TRUE(all.output.contains("KivNotificationRepeatTimeout 3 After 5 hours\n")) << all.output.constData();
    EXPECT_TRUE(all.output.endsWith("KivNotificationLastMessId 0\n")) << all.output.constData();
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(SettingsCommand, PrintsNothingOfTheLastMessageThatATerminalWouldObey)
{
    ASSERT_TRUE(QDir().mkpath(QFileInfo(path).path()));
    ASSERT_TRUE(PropertyList::writeFile(
        path, QVariantMap{{QStringLiteral("KivNotificationLastMessId"), QStringLiteral("a\n\u009b2Jb")}},
        PropertyList::Writing::InPlace));
    const QByteArray output = run({}).output;
    EXPECT_TRUE(output.endsWith("KivNotificationLastMessId a??2Jb\n")) << output.constData();
}

TEST_F(SettingsCommand, PrintsOneSetting)
{
    EXPECT_EQ(run({show}).output, "KivNotificationShowTimeout 3 Every 15 minutes\n");
}

TEST_F(SettingsCommand, SetsOneAndTellsTheSessionBeforeItEnds)
{
    ASSERT_TRUE(bus.emplace().start());
    Listener listener(*bus);
    const Result set = run({news, QStringLiteral("off")});
    EXPECT_EQ(set.status, 0);
    EXPECT_EQ(set.output + set.errors, QByteArray());
    EXPECT_EQ(PropertyList::readFile(path).toMap().value(news), QVariant(false));
    EXPECT_TRUE(waitUntil([&] { return listener.heard == 1; }));
    EXPECT_EQ(run({news}).output, "KivNotificationShowNews 0 off\n");
}

TEST_F(SettingsCommand, SaysThatNobodyIsToldWithoutABus)
{
    const Result set = run({show, QStringLiteral("5")});
    EXPECT_EQ(set.status, 0);
    EXPECT_TRUE(set.errors.contains("no session bus")) << set.errors.constData();
    EXPECT_EQ(PropertyList::readFile(path).toMap().value(show).toInt(), 5);
}

TEST_F(SettingsCommand, RefusesAKeyOrAValueThatThereIsNot)
{
    const QString key = QStringLiteral("KivNotificationLastMessId");
    const QList<QStringList> table{{key},
                                   {key, QStringLiteral("9")},
                                   {show, QStringLiteral("6")},
                                   {show, QString()},
                                   {news, QStringLiteral("maybe")},
                                   {show, QStringLiteral("5"), QStringLiteral("5")}};
    for (const QStringList &arguments : table) {
        const Result refused = run(arguments);
        EXPECT_EQ(refused.status, 2) << qPrintable(arguments.join(u' '));
        EXPECT_TRUE(refused.errors.startsWith("kivservice: ")) << refused.errors.constData();
    }
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(SettingsCommand, FailsWhenTheFileCannotBeRead)
{
    ASSERT_EQ(run({show, QStringLiteral("5")}).status, 0);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    ASSERT_GT(file.write("nonsense"), 0);
    file.close();
    EXPECT_EQ(run({}).status, 1);
    EXPECT_EQ(run({show, QStringLiteral("4")}).status, 1);
}

} // namespace

#include "SettingsCommandTest.moc"

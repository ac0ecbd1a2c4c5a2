#include "tests/session/support/SettingsProgram.h"

#include "platform/data/PropertyList.h"
#include "tests/support/BusPeer.h"

#include <QDBusMessage>
#include <QDir>

#include <gtest/gtest.h>

namespace
{
const QString lastIdKey = QStringLiteral("KivNotificationLastMessId");

QString folderOf(const Desktop &desktop)
{
    return desktop.environment().value(QStringLiteral("HOME")) + QStringLiteral("/Library/Preferences");
}
} // namespace

QString SettingsProgram::file(const Desktop &desktop)
{
    return folderOf(desktop) + QStringLiteral("/com.tamborel.kivmenua.plist");
}

QString SettingsProgram::lastMessageId(const Desktop &desktop)
{
    return PropertyList::readFile(file(desktop)).toMap().value(lastIdKey, QStringLiteral("0")).toString();
}

void SettingsProgram::write(const Desktop &desktop, int show, int close, int repeat)
{
    QVariantMap preferences{{QStringLiteral("KivNotificationShowTimeout"), show},
                            {QStringLiteral("KivNotificationCloseTimeout"), close},
                            {QStringLiteral("KivNotificationRepeatTimeout"), repeat}};
    for (const char *what :
         {"News", "Notices", "Updates", "Warnings", "LowPriority", "MediumPriority", "HighPriority"}) {
        preferences.insert(QStringLiteral("KivNotificationShow") + QLatin1String(what), true);
    }
    // A desktop that has not started has no home yet, and the file would be one of the machine's.
    ASSERT_TRUE(desktop.environment().contains(QStringLiteral("HOME")));
    preferences.insert(lastIdKey, lastMessageId(desktop));
    EXPECT_TRUE(QDir().mkpath(folderOf(desktop)));
    EXPECT_TRUE(PropertyList::writeFile(file(desktop), preferences, PropertyList::Writing::InPlace));
}

void SettingsProgram::announce(Desktop &desktop, const Agent &agent)
{
    const BusPeer program(desktop.bus());
    EXPECT_TRUE(program.connection().send(
        QDBusMessage::createSignal(QStringLiteral("/"), QStringLiteral("com.tamborel.kivune.DistributedNotifications"),
                                   QStringLiteral("KivMunuUpdateSettingsNotification"))));
    // Messages of one sender to one receiver keep their order. This one, which is no event, is answered by the thread
    // that has had the signal before.
    const QDBusMessage nonsense = QDBusMessage::createMethodCall(
        QStringLiteral("com.tamborel.kivune.p%1").arg(agent.pid()), QStringLiteral("/com/tamborel/kivune/AppleEvents"),
        QStringLiteral("com.tamborel.kivune.AppleEvents"), QStringLiteral("Send"));
    EXPECT_EQ(program.connection().call(nonsense).errorName(),
              QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs"));
}

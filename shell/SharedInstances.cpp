#include "notify/feed/KivNotificationReceiver.h"
#include "notify/queue/KivNotificationManager.h"
#include "notify/rules/KivNotificationProperties.h"
#include "platform/Bundle.h"
#include "platform/SystemVersion.h"

#include <QDir>

// The one object of each class in this process. They are put together here, above all of them, so that none needs to
// know where the others come from: the feed's receiver is handed a sink, which happens to be the manager.

namespace
{
QDateTime now()
{
    return QDateTime::currentDateTimeUtc();
}
} // namespace

KivNotificationProperties &KivNotificationProperties::sharedInstance()
{
    static KivNotificationProperties instance(
        Bundle::main(), QDir::homePath(), QString::fromLatin1(standardSystemVersionFile), UserDatabase::system(), now);
    return instance;
}

KivNotificationManager &KivNotificationManager::sharedInstance()
{
    // Pop-ups and timers may refer to it until the very end of the process.
    static KivNotificationManager &instance =
        *new KivNotificationManager(KivNotificationProperties::sharedInstance(), QDir::homePath(), now);
    return instance;
}

KivNotificationReceiver &KivNotificationReceiver::sharedInstance()
{
    static KivNotificationReceiver &instance = *new KivNotificationReceiver(
        KivNotificationProperties::sharedInstance(), Bundle::main(), KivNotificationManager::sharedInstance());
    return instance;
}

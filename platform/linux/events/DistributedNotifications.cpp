#include "platform/DistributedNotifications.h"

#include "platform/linux/events/DistributedNotificationSignal.h"
#include "platform/linux/include/SessionBus.h"

#include <utility>

std::unique_ptr<DistributedNotifications::Observer>
DistributedNotifications::addObserver(const QString &name, std::function<void()> callback)
{
    return std::make_unique<DistributedNotificationSignal>(SessionBus::instance(), name, std::move(callback));
}

#include "platform/DistributedNotifications.h"

#include "platform/ProductTexts.h"
#include "platform/linux/events/DistributedNotificationSignal.h"
#include "platform/linux/include/SessionBus.h"

#include <QDBusMessage>

#include <utility>

std::unique_ptr<DistributedNotifications::Observer>
DistributedNotifications::addObserver(const QString &name, std::function<void()> callback)
{
    return std::make_unique<DistributedNotificationSignal>(SessionBus::instance(), name, std::move(callback));
}

bool DistributedNotifications::post(const QString &name)
{
    const SessionBus &bus = SessionBus::instance();
    const auto signal =
        QDBusMessage::createSignal(QStringLiteral("/"), QString(ProductTexts::notificationInterface), name);
    // The bus answers in order: once it has told its names, it has passed the signal on.
    return bus.isConnected() && bus.connection().send(signal) && !bus.names().isEmpty();
}

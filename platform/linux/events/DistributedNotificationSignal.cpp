#include "platform/linux/events/DistributedNotificationSignal.h"

#include "platform/linux/include/SessionBus.h"

#include <QTimer>

#include <chrono>
#include <utility>

namespace
{

/// Long enough for many to count as one, and too short for anybody to wait.
constexpr std::chrono::milliseconds oneMoment(20);

const QString interfaceName = QStringLiteral("com.tamborel.kivune.DistributedNotifications");
} // namespace

DistributedNotificationSignal::DistributedNotificationSignal(SessionBus &bus, QString name,
                                                             std::function<void()> callback)
    : m_bus(bus)
    , m_name(std::move(name))
    , m_callback(std::move(callback))
{
    connect(&bus, &SessionBus::connected, this, &DistributedNotificationSignal::observe);
    observe();
}

DistributedNotificationSignal::~DistributedNotificationSignal()
{
    m_bus.connection().disconnect(QString(), QString(), interfaceName, m_name, this, SLOT(onPosted()));
}

void DistributedNotificationSignal::observe()
{
    // Of any sender, from any path. QtDBus knows no other way to name a slot than by a string.
    m_bus.connection().connect(QString(), QString(), interfaceName, m_name, this, SLOT(onPosted()));
}

void DistributedNotificationSignal::onPosted()
{
    // All that come meanwhile mean the same once.
    if (!std::exchange(m_isDue, true)) {
        QTimer::singleShot(oneMoment, this, [this] {
            m_isDue = false;
            m_callback();
        });
    }
}

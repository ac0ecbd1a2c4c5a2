#include "platform/linux/events/DistributedNotificationSignal.h"

#include "platform/ProductTexts.h"
#include "platform/linux/include/SessionBus.h"

#include <utility>

namespace
{
const QString interfaceName = ProductTexts::notificationInterface;
}

DistributedNotificationSignal::DistributedNotificationSignal(SessionBus &bus, QString name,
                                                             std::function<void()> callback)
    : m_bus(bus)
    , m_name(std::move(name))
    , m_callback(std::move(callback))
{
    connect(&bus, &SessionBus::connected, this, &DistributedNotificationSignal::observe);
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, [this] {
        if (std::exchange(m_isPostedAgain, false)) {
            tell();
        }
    });
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
    if (m_pause.isActive()) {
        m_isPostedAgain = true;
    } else {
        tell();
    }
}

void DistributedNotificationSignal::tell()
{
    // From here on what is posted is news again, also while the callback runs.
    m_pause.start(pauseAfterACall);
    m_callback();
}

#include "tests/platform/linux/item/NotifierWatcherObject.h"

#include <QMutexLocker>

bool NotifierWatcherObject::isHostRegistered() const
{
    const QMutexLocker lock(&m_mutex);
    return m_isHostRegistered;
}

void NotifierWatcherObject::setHostRegistered(bool isRegistered)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_isHostRegistered = isRegistered;
    }
    if (isRegistered) {
        Q_EMIT StatusNotifierHostRegistered();
    } else {
        Q_EMIT StatusNotifierHostUnregistered();
    }
}

QStringList NotifierWatcherObject::items() const
{
    const QMutexLocker lock(&m_mutex);
    return m_items;
}

void NotifierWatcherObject::RegisterStatusNotifierItem(const QString &service)
{
    {
        const QMutexLocker lock(&m_mutex);
        m_items.append(service);
    }
    Q_EMIT StatusNotifierItemRegistered(service);
}

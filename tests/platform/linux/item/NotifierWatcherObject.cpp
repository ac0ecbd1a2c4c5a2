#include "tests/platform/linux/item/NotifierWatcherObject.h"

void NotifierWatcherObject::setHostRegistered(bool isRegistered)
{
    m_isHostRegistered = isRegistered;
    if (isRegistered) {
        Q_EMIT StatusNotifierHostRegistered();
    } else {
        Q_EMIT StatusNotifierHostUnregistered();
    }
}

void NotifierWatcherObject::RegisterStatusNotifierItem(const QString &service)
{
    if (m_refusesItems) {
        sendErrorReply(QDBusError::AccessDenied, QStringLiteral("No room"));
        return;
    }
    m_items.append(service);
    Q_EMIT StatusNotifierItemRegistered(service);
}

#include "menu/AssociatedObjects.h"

#include <QPointer>
#include <QVariant>

using Attachment = QPointer<QObject>;

void setAssociatedObject(QObject &holder, const char *key, QObject *object)
{
    holder.setProperty(key, object ? QVariant::fromValue(Attachment(object)) : QVariant());
}

QObject *associatedObject(const QObject &holder, const char *key)
{
    return holder.property(key).value<Attachment>();
}

void removeAssociatedObjects(QObject &holder)
{
    // Qt keeps dynamic properties of its own; only ours hold an attachment.
    for (const QByteArray &name : holder.dynamicPropertyNames()) {
        if (holder.property(name).metaType() == QMetaType::fromType<Attachment>()) {
            holder.setProperty(name, QVariant());
        }
    }
}

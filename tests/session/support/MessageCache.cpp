#include "tests/session/support/MessageCache.h"

#include "platform/data/PropertyList.h"
#include "tests/support/WaitUntil.h"

#include <QFile>
#include <QFileInfo>

MessageCache::MessageCache(const QString &home)
    : m_path(home + QStringLiteral("/Library/Caches/com.tamborel.kivune/notifications.plist"))
{
}

QString MessageCache::folder() const
{
    return QFileInfo(m_path).path();
}

QByteArray MessageCache::content() const
{
    QFile file(m_path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

MessageCache::Entries MessageCache::entries() const
{
    Entries entries;
    for (const QVariant &entry : PropertyList::readFile(m_path).toList()) {
        const QVariantMap record = entry.toMap();
        entries.push_back(record.value(QStringLiteral("messageId")).toString().toStdString() + 'x' +
                          std::to_string(record.value(QStringLiteral("messageRepeat")).toInt()));
    }
    return entries;
}

std::vector<std::string> MessageCache::texts() const
{
    std::vector<std::string> texts;
    for (const QVariant &entry : PropertyList::readFile(m_path).toList()) {
        texts.push_back(entry.toMap().value(QStringLiteral("messageText")).toString().toStdString());
    }
    return texts;
}

bool MessageCache::becomes(const Entries &wanted) const
{
    return waitUntil([&] { return entries() == wanted; });
}

#include "notify/queue/NotificationCache.h"

#include "platform/data/AtomicFile.h"
#include "platform/data/PropertyList.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

const QLatin1String notificationCacheDirectory("~/Library/Caches/com.tamborel.kivune");
const QLatin1String notificationCacheFile("notifications.plist");

QString expanded(QString path, const QString &homeFolder)
{
    return path.replace(0, 1, homeFolder);
}

QByteArray digestOf(const QByteArray &content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Sha1);
}

/// Nothing when the file is missing or may not be read.
std::optional<QByteArray> contentOf(const QString &path)
{
    QFile file(path);
    // A pipe would block.
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    return file.readAll();
}

bool isArray(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantList;
}

bool isPrivate(const QString &path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 && (status.st_mode & 0777) == 0600;
}

} // namespace

NotificationCache::NotificationCache(const QString &homeFolder)
    : m_folder(expanded(notificationCacheDirectory, homeFolder))
    , m_path(m_folder + u'/' + notificationCacheFile)
{
}

QString NotificationCache::pathOfUnreadable() const
{
    return m_path + QLatin1String(".unreadable");
}

QVariantList NotificationCache::read()
{
    removeLeftovers();
    const std::optional<QByteArray> content = contentOf(m_path);
    const QVariant value = content ? PropertyList::read(*content) : QVariant();
    if (!isArray(value)) {
        return {};
    }
    m_digest = digestOf(*content);
    return value.toList();
}

bool NotificationCache::write(const QVariantList &list)
{
    const QByteArray content = PropertyList::toXml(list);
    if (content.isEmpty() || !makeFolder()) {
        return false;
    }
    if (QFileInfo::exists(m_path)) {
        const std::optional<QByteArray> present = contentOf(m_path);
        if (present == content && isPrivate(m_path)) {
            return true;
        }
        if ((!present || !isReadable(*present)) && !keepAside()) {
            return false;
        }
    }
    if (!AtomicFile::write(m_path, content, AtomicFile::Access::OwnerOnly)) {
        return false;
    }
    m_digest = digestOf(content);
    return true;
}

bool NotificationCache::makeFolder() const
{
    if (QFileInfo::exists(m_folder)) {
        return true;
    }
    // The folders above are everybody's business, and as others would make them.
    return QDir().mkpath(QFileInfo(m_folder).path()) && ::mkdir(QFile::encodeName(m_folder).constData(), 0700) == 0;
}

/// Removes what an agent has left that was killed while it wrote. That of another one which is writing just now, in
/// another session of the same user, is younger.
void NotificationCache::removeLeftovers() const
{
    const QDateTime old = QDateTime::currentDateTimeUtc().addSecs(-3600);
    const QString nameOfTemporary = notificationCacheFile + QLatin1String(".??????");
    for (const QFileInfo &file : QDir(m_folder).entryInfoList({nameOfTemporary}, QDir::Files | QDir::Hidden)) {
        if (file.lastModified() < old) {
            QFile::remove(file.filePath());
        }
    }
}

bool NotificationCache::isReadable(const QByteArray &content) const
{
    return digestOf(content) == m_digest || isArray(PropertyList::read(content));
}

/// A link, so that there is a file under both names at every moment. Somebody else's file may not be linked to.
bool NotificationCache::keepAside() const
{
    const QByteArray from = QFile::encodeName(m_path);
    const QByteArray to = QFile::encodeName(pathOfUnreadable());
    if (!QFileInfo(m_path).isFile()) {
        return false;
    }
    ::unlink(to.constData());
    return ::link(from.constData(), to.constData()) == 0 || ::rename(from.constData(), to.constData()) == 0;
}

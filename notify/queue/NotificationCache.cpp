#include "notify/queue/NotificationCache.h"

#include "notify/ProductTexts.h"
#include "platform/LogCategories.h"
#include "platform/data/PropertyList.h"
#include "platform/data/PropertyListValues.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/OwnFolder.h"
#include "platform/files/RegularFile.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <new>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

const QLatin1String notificationCacheFile("notifications.plist");

QString expanded(QString path, const QString &homeFolder)
{
    return path.replace(0, 1, homeFolder);
}

QByteArray digestOf(const QByteArray &content)
{
    return QCryptographicHash::hash(content, QCryptographicHash::Sha1);
}

/// Nothing when the file is missing or may not be read, and for one that is too large to be a list.
std::optional<QByteArray> contentOf(const QString &path)
{
    return RegularFile::read(path, PropertyListValues::maxBytes, RegularFile::Links::Refuse);
}

bool isArray(const QVariant &value)
{
    return value.typeId() == QMetaType::QVariantList;
}

/// What is there under that very name, which a symbolic link is too; nothing when nothing is.
std::optional<struct stat> statusOf(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0 ? std::optional(status) : std::nullopt;
}

/// 0 for nothing.
mode_t modeOf(const QString &path)
{
    const std::optional<struct stat> status = statusOf(path);
    return status ? status->st_mode : 0;
}

} // namespace

NotificationCache::NotificationCache(const QString &homeFolder)
    : m_home(homeFolder)
    , m_folder(expanded(ProductTexts::notificationCacheDirectory, homeFolder))
    , m_path(m_folder + u'/' + notificationCacheFile)
{
}

QString NotificationCache::pathOfUnreadable() const
{
    return m_path + QLatin1String(".unreadable");
}

qint64 NotificationCache::fileSize() const
{
    const std::optional<struct stat> status = statusOf(m_path);
    return status ? status->st_size : 0;
}

QVariantList NotificationCache::read()
{
    m_isUnread = true; // Until it is known what is there, which there may not be the memory for.
    removeLeftovers();
    const std::optional<QByteArray> content = contentOf(m_path);
    const QVariant value = content ? PropertyList::read(*content) : QVariant();
    m_isUnread = false;
    if (!isArray(value)) {
        qCDebug(queueLog) << "no messages from before:" << m_path << (content ? "holds no list" : "cannot be read");
        return {};
    }
    m_digest = digestOf(*content);
    return value.toList();
}

bool NotificationCache::write(const QVariantList &list)
{
    QString obstacle;
    try {
        const QByteArray content = PropertyList::toXml(list);
        obstacle = content.isEmpty() ? QStringLiteral("the list is too large") : obstacleToWriting(content);
    } catch (const std::bad_alloc &) {
        obstacle = QStringLiteral("there is no memory for them");
    }
    if (!obstacle.isNull() && obstacle != m_obstacle) {
        qCWarning(queueLog, "cannot save the messages in %s: %s", qPrintable(m_path), qPrintable(obstacle));
    }
    m_obstacle = obstacle;
    return obstacle.isNull();
}

/// Null when the file has this content now.
QString NotificationCache::obstacleToWriting(const QByteArray &content)
{
    if (const QString obstacle = obstacleToFolder(); !obstacle.isNull()) {
        return obstacle;
    }
    if (const mode_t mode = modeOf(m_path); mode != 0 && !S_ISLNK(mode)) {
        const std::optional<QByteArray> present = contentOf(m_path);
        if (present == content && (mode & 0777) == 0600) {
            return {};
        }
        if (!present || m_isUnread || !isReadable(*present)) {
            if (!keepAside()) {
                return QStringLiteral("what is there cannot be kept aside");
            }
            qCWarning(queueLog, "%s cannot be read and is kept as %s", qPrintable(m_path),
                      qPrintable(pathOfUnreadable()));
        }
    }
    QString obstacle;
    if (AtomicFile::write(m_path, content, AtomicFile::Access::OwnerOnly, &obstacle)) {
        m_digest = digestOf(content);
        m_isUnread = false;
    }
    return obstacle;
}

/// Makes the folder when it is missing; null when it is there.
QString NotificationCache::obstacleToFolder() const
{
    const OwnFolder nearest = OwnFolder::below(m_home, OwnFolder::nearestTo(m_folder));
    if (!nearest.isOurs() || QFileInfo::exists(m_folder)) {
        return nearest.obstacle();
    }
    // The folders above are everybody's business, and as others would make them.
    const bool made =
        QDir().mkpath(QFileInfo(m_folder).path()) && ::mkdir(QFile::encodeName(m_folder).constData(), 0700) == 0;
    return made ? QString() : QStringLiteral("the folder cannot be made");
}

/// Removes what an agent has left that was killed while it wrote. That of another one which is writing just now, in
/// another session of the same user, is younger.
void NotificationCache::removeLeftovers() const
{
    if (!OwnFolder::below(m_home, m_folder).isOurs()) {
        return;
    }
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
    if (!S_ISREG(modeOf(m_path))) {
        return false; // Of a symbolic link the name would be kept, and not what it leads to.
    }
    ::unlink(to.constData());
    return ::link(from.constData(), to.constData()) == 0 || ::rename(from.constData(), to.constData()) == 0;
}

#include "settings/PreferencesFile.h"

#include "notify/ProductTexts.h"
#include "notify/rules/SettingTable.h"
#include "platform/data/PropertyList.h"
#include "platform/data/StringValues.h"
#include "platform/files/AtomicFile.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace
{

const QString noMessageYet = QStringLiteral("0");

bool isThere(const QString &path)
{
    const QFileInfo file(path);
    return file.exists() || file.isSymLink();
}

std::optional<QVariantMap> readDictionary(const QString &path, RegularFile::Links links)
{
    const QVariant value = PropertyList::readFile(path, links);
    return value.typeId() == QMetaType::QVariantMap ? std::optional(value.toMap()) : std::nullopt;
}

/// What a file begins with: as long as there is none, this is what holds.
QVariantMap defaults()
{
    QVariantMap preferences{{lastMessageIdKey, noMessageYet}};
    NotificationSettings().writeTo(preferences);
    return preferences;
}

} // namespace

PreferencesFile::PreferencesFile(QString path)
    : m_path(std::move(path))
{
}

PreferencesFile PreferencesFile::ofUser()
{
    return PreferencesFile(QString(ProductTexts::preferencesFile).replace(0, 1, QDir::homePath()));
}

std::optional<PreferencesFile::Contents> PreferencesFile::read() const
{
    const std::optional<QVariantMap> preferences =
        QFileInfo::exists(m_path) ? readDictionary(m_path, RegularFile::Links::Follow) : defaults();
    if (!preferences) {
        return std::nullopt;
    }
    return Contents{NotificationSettings::fromDictionary(*preferences),
                    StringValues::stringValue(preferences->value(lastMessageIdKey))};
}

QString PreferencesFile::change(const SettingEntry &setting, std::int32_t value) const
{
    // Read anew each time: the agent may have written its id meanwhile. What cannot be read is somebody's all the same,
    // and what a symbolic link leads to belongs elsewhere.
    std::optional<QVariantMap> preferences =
        isThere(m_path) ? readDictionary(m_path, RegularFile::Links::Refuse) : defaults();
    if (!preferences) {
        return QStringLiteral("%1 cannot be read, and is left as it is").arg(m_path);
    }
    NotificationSettings settings = NotificationSettings::fromDictionary(*preferences);
    setting.setIn(settings, value);
    settings.writeTo(*preferences);
    QString obstacle = QStringLiteral("too much is in it");
    const QByteArray content = PropertyList::toXml(*preferences);
    QDir().mkpath(QFileInfo(m_path).path());
    if (content.isEmpty() || !AtomicFile::write(m_path, content, AtomicFile::Access::AsBefore, &obstacle)) {
        return QStringLiteral("%1 cannot be written: %2").arg(m_path, obstacle);
    }
    return {};
}

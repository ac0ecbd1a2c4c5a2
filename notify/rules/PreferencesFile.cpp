#include "notify/rules/PreferencesFile.h"

#include "notify/ProductTexts.h"
#include "notify/record/MessageId.h"
#include "notify/rules/SettingTable.h"
#include "platform/data/PropertyList.h"
#include "platform/data/StringValues.h"
#include "platform/files/AtomicFile.h"
#include "platform/files/FileLock.h"
#include "platform/files/OwnFolder.h"

#include <QDir>
#include <QFileInfo>

#include <utility>

namespace
{

std::optional<QVariantMap> readDictionary(const QString &path, RegularFile::Links links)
{
    const QVariant value = PropertyList::readFile(path, links);
    return value.typeId() == QMetaType::QVariantMap ? std::optional(value.toMap()) : std::nullopt;
}

/// What a file begins with: as long as there is none, this is what holds.
QVariantMap defaults()
{
    QVariantMap preferences{{lastMessageIdKey, QString(PreferencesFile::noMessageYet)}};
    NotificationSettings().writeTo(preferences);
    return preferences;
}

} // namespace

PreferencesFile::PreferencesFile(QString home, QString path)
    : m_home(std::move(home))
    , m_path(std::move(path))
{
}

PreferencesFile PreferencesFile::inHome(const QString &homeFolder)
{
    return PreferencesFile(homeFolder, QString(ProductTexts::preferencesFile).replace(0, 1, homeFolder));
}

bool PreferencesFile::exists() const
{
    return QFileInfo::exists(m_path);
}

std::optional<PreferencesFile::Contents> PreferencesFile::read(std::chrono::milliseconds patience) const
{
    const auto present = [this](std::chrono::milliseconds wait) {
        // Written in place, it may be half there for a moment.
        const FileLock lock(m_path, FileLock::For::Reading, wait);
        return std::pair(exists() ? readDictionary(m_path, RegularFile::Links::Follow) : defaults(), lock.isBusy());
    };
    auto [preferences, isBusy] = present(patience);
    if (!preferences && isBusy) {
        preferences = present(std::chrono::milliseconds(20)).first;
    }
    if (!preferences) {
        return std::nullopt;
    }
    return Contents{NotificationSettings::fromDictionary(*preferences),
                    keptId(StringValues::stringValue(preferences->value(lastMessageIdKey)))};
}

QString PreferencesFile::change(const SettingEntry &setting, std::int32_t value) const
{
    const QFileInfo file(m_path);
    const OwnFolder nearest = OwnFolder::below(m_home, OwnFolder::nearestTo(file.path()));
    if (!nearest.isOurs()) {
        return notWritten(nearest.obstacle());
    }
    QDir().mkpath(file.path());
    const FileLock lock(m_path, FileLock::For::Writing, usualPatience);
    // What cannot be read is somebody's all the same, and what a symbolic link leads to belongs elsewhere. An empty
    // file is what a full disk once left.
    const bool holdsSomething = file.isSymLink() || (file.exists() && !(file.isFile() && file.size() == 0));
    std::optional<QVariantMap> preferences =
        holdsSomething ? readDictionary(m_path, RegularFile::Links::Refuse) : defaults();
    if (!preferences) {
        return QStringLiteral("%1 cannot be read, and is left as it is").arg(m_path);
    }
    NotificationSettings settings = NotificationSettings::fromDictionary(*preferences);
    setting.setIn(settings, value);
    settings.writeTo(*preferences);
    QString obstacle = QStringLiteral("too much is in it");
    const QByteArray content = PropertyList::toXml(*preferences);
    if (content.isEmpty() || !AtomicFile::write(m_path, content, AtomicFile::Access::AsBefore, &obstacle)) {
        return notWritten(obstacle);
    }
    return {};
}

QString PreferencesFile::notWritten(const QString &why) const
{
    return QStringLiteral("%1 cannot be written: %2").arg(m_path, why);
}

PreferencesFile::Storing PreferencesFile::setLastMessageId(const QString &id, Manners manners) const
{
    const std::chrono::milliseconds patience(manners == Manners::Insist ? 20 : 0);
    const FileLock lock(m_path, FileLock::For::Writing, patience);
    if (lock.isBusy() && manners == Manners::Yield) {
        return Storing::Busy;
    }
    std::optional<QVariantMap> preferences = readDictionary(m_path, RegularFile::Links::Refuse);
    if (!preferences || !OwnFolder::below(m_home, QFileInfo(m_path).path()).isOurs()) {
        return Storing::Failed;
    }
    preferences->insert(lastMessageIdKey, id);
    return PropertyList::writeFile(m_path, *preferences, PropertyList::Writing::InPlace) ? Storing::Done
                                                                                         : Storing::Failed;
}

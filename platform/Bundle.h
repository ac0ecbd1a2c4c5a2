#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

/// The application bundle: the information dictionary and the resources that are installed with the program.
/// On Linux the folder ../share/kivmenua beside the program's own folder, on macOS the .app. A copy of those folders
/// with another Info.plist is another bundle. Main thread only.
class Bundle final
{
public:
    /// A bundle whose Info.plist and resources lie in `resources`.
    explicit Bundle(QString resources);

    /// The running program's bundle. Read once, at first use.
    [[nodiscard]] static const Bundle &main();

    /// The information dictionary; nothing when Info.plist is missing or malformed.
    [[nodiscard]] const std::optional<QVariantMap> &infoDictionary() const noexcept { return m_info; }

    /// The string under `key` of the information dictionary; a null string when there is none.
    [[nodiscard]] QString infoString(const QString &key) const;

    /// The path of the resource `name`.`type`; a null string when there is no such file.
    [[nodiscard]] QString pathForResource(const QString &name, const QString &type) const;

private:
    QString m_resources;
    std::optional<QVariantMap> m_info;
};

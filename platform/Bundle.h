#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

/// The application bundle: the information dictionary and the resources that are installed with the program.
/// On Linux the folders ../share/kivmenua and ../libexec/kivmenua beside the program's own folder, on macOS the .app. A
/// copy of those folders with another Info.plist is another bundle. Main thread only.
class Bundle final
{
public:
    /// A bundle whose Info.plist, resources and programs lie in `resources`.
    explicit Bundle(const QString &resources);

    /// A bundle whose Info.plist and programs lie elsewhere: on macOS the one is a folder above the resources.
    Bundle(QString resources, const QString &informationFile, QString executables);

    /// The running program's bundle. Read once, at first use.
    [[nodiscard]] static const Bundle &main();

    /// The information dictionary; nothing when Info.plist is missing or malformed. What Info.plist does not state may
    /// stand in a Build.plist among the resources: where an administrator keeps the one over upgrades, the other
    /// follows the program.
    [[nodiscard]] const std::optional<QVariantMap> &infoDictionary() const noexcept { return m_info; }

    /// The string under `key` of the information dictionary, a number as its text: a packager may write a version or a
    /// date as one. A null string when there is neither.
    [[nodiscard]] QString infoString(const QString &key) const;

    /// The path of the resource `name`.`type`, or of `name` alone when `type` is empty; a null string when there is no
    /// such file.
    [[nodiscard]] QString pathForResource(const QString &name, const QString &type) const;

    /// The path of a helper program of the bundle's; a null string when there is no such file.
    [[nodiscard]] QString pathForAuxiliaryExecutable(const QString &name) const;

private:
    QString m_resources;
    QString m_executables;
    std::optional<QVariantMap> m_info;
};

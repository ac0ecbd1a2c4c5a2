#pragma once

#include <QByteArray>
#include <QString>

/// Writing a file so that a crash, a full disk or a quota leaves the old one whole: the new content goes to a temporary
/// file beside it, which then takes its place. Reentrant.
namespace AtomicFile
{

enum class Access {
    AsBefore, ///< The mode of the old file, or the process's usual one.
    OwnerOnly ///< Nobody but the owner may read or write it, whatever the old file's mode was.
};

/// False, with the old file untouched, when the new one cannot be written whole, when the folder is missing or belongs
/// to somebody else, or when `path` is there but no file; `obstacle` then says why. A symbolic link is replaced and
/// never followed: what it leads to stays as it is.
[[nodiscard]] bool write(const QString &path, const QByteArray &content, Access access, QString *obstacle = nullptr);

} // namespace AtomicFile

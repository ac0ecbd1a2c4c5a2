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

/// False, with the old file untouched, when the new one cannot be written whole or `path` is there but no regular file.
/// Creates no folder. A symbolic link is followed.
[[nodiscard]] bool write(const QString &path, const QByteArray &content, Access access);

} // namespace AtomicFile

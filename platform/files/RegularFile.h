#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Files that anybody may have put there. Neither function waits: not for the other end of a pipe, nor for a device.
/// Reentrant.
namespace RegularFile
{

enum class Links {
    Follow,
    Refuse ///< As what is missing: for a file that is to be written anew.
};

/// The content of a file; nothing when it is missing, may not be read, has more than `maxBytes` bytes, of which none is
/// read then, or is no regular file.
[[nodiscard]] std::optional<QByteArray> read(const QString &path, qsizetype maxBytes, Links links);

/// Writes straight into the file, which keeps its owner, mode and names, or makes it; creates no folder. False when
/// `path` is a symbolic link or anything else but a regular file, when the folder belongs to somebody else, or when not
/// all can be written; for want of room, the file is as it was.
[[nodiscard]] bool overwrite(const QString &path, const QByteArray &content);

} // namespace RegularFile

#pragma once

#include "platform/files/FileDescriptor.h"

#include <QString>

/// A folder in which something is to be written: only one that belongs to this process's user is good for that. A
/// program that is run as root with the home of somebody else would else leave files there that are not his, or be led
/// to files of the system by a link of his. Held open, so that no other folder takes its place meanwhile.
class OwnFolder final
{
public:
    explicit OwnFolder(const QString &path);

    /// The folder itself, or the one above it in which it would be made.
    [[nodiscard]] static QString nearestTo(QString path);

    /// Why nothing can be written there; null when it can, as far as its owner goes.
    [[nodiscard]] const QString &obstacle() const noexcept { return m_obstacle; }
    [[nodiscard]] bool isOurs() const noexcept { return m_obstacle.isNull(); }
    [[nodiscard]] int descriptor() const noexcept { return m_folder.number(); }

private:
    FileDescriptor m_folder;
    QString m_obstacle;
};

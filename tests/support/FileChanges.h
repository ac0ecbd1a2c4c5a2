#pragma once

#include <QByteArrayList>
#include <QStringList>

/// Tells in which order files are written: one that is there already when it is closed, one that is written elsewhere
/// when it takes its place.
class FileChanges final
{
public:
    /// No two of the files may have the same name. Their folders must exist.
    explicit FileChanges(const QStringList &files);
    ~FileChanges();
    FileChanges(const FileChanges &) = delete;
    FileChanges &operator=(const FileChanges &) = delete;

    /// The names, without folders, of those that have been written since the last call.
    [[nodiscard]] QByteArrayList takeNames();

private:
    int m_inotify;
    QByteArrayList m_names;
};

#pragma once

#include <QByteArray>
#include <QString>
#include <QVariantList>

/// The file that keeps the queued messages from one run of the agent to the next: a property list, an array of the
/// records' dictionary form, under ~/Library/Caches/com.tamborel.kivune. Only the user may read or write it.
///
/// It is always replaced as a whole. When the agent is killed at any moment, the file has the content that was being
/// written or the one before. Not thread-safe.
class NotificationCache final
{
public:
    /// `homeFolder` is the user's home; nothing is read or made yet.
    explicit NotificationCache(const QString &homeFolder);

    [[nodiscard]] const QString &path() const noexcept { return m_path; }
    /// Where a file goes that cannot be read, before it is overwritten.
    [[nodiscard]] QString pathOfUnreadable() const;

    /// Of what is there under that very name; 0 when nothing is.
    [[nodiscard]] qint64 fileSize() const;

    /// The array in the file; empty when the file is missing, cannot be read, is larger than a list may be, is a
    /// symbolic link, or holds anything else.
    [[nodiscard]] QVariantList read();

    /// Makes `list` the file's content, and the folder when it is missing. Does not touch a file that has this very
    /// content. One that holds no array, or that may not be read, is kept under its second name first; a symbolic link
    /// is replaced, and what it leads to stays as it is. Nothing is written to folders of somebody else.
    /// False, with the file as it was and a warning when the cause is a new one, when any of that fails.
    bool write(const QVariantList &list);

private:
    [[nodiscard]] QString obstacleToWriting(const QByteArray &content);
    [[nodiscard]] QString obstacleToFolder() const;
    void removeLeftovers() const;
    [[nodiscard]] bool isReadable(const QByteArray &content) const;
    [[nodiscard]] bool keepAside() const;

    QString m_folder;
    QString m_path;
    QString m_obstacle;      ///< To what was written last; null when it was.
    bool m_isUnread = false; ///< A reading has begun, and there was no memory for what is there.
    QByteArray m_digest;     ///< Of the content that was read or written last and is known to be an array.
};

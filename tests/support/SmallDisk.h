#pragma once

#include <QByteArray>
#include <QString>

/// A disk with room for a few small files, in the place of a folder. This process and those that it starts see it, and
/// no others do.
class SmallDisk final
{
public:
    /// Gives this process mounts of its own, which such a disk needs. To be called once, while there are no other
    /// threads. Returns why the system does not allow it, or an empty text.
    [[nodiscard]] static QString unshareMounts();

    /// Makes the folder when it is missing.
    explicit SmallDisk(const QString &folder, int kibibytes = 64);
    ~SmallDisk();
    SmallDisk(const SmallDisk &) = delete;
    SmallDisk &operator=(const SmallDisk &) = delete;

    /// Leaves room for one page, so that a longer file can be begun and not finished.
    void fill() const;
    void makeRoom() const;

    enum class Access { ReadOnly, ReadWrite };
    void setAccess(Access access) const;

private:
    [[nodiscard]] QString filler() const;

    const QString m_folder;
    const QByteArray m_options;
};

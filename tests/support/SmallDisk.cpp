#include "tests/support/SmallDisk.h"

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace
{

QString lastError(const char *what)
{
    return QStringLiteral("%1: %2").arg(QLatin1String(what), QString::fromLocal8Bit(std::strerror(errno)));
}

bool write(const char *path, const QByteArray &text)
{
    QFile file(QString::fromLatin1(path));
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(text) == text.size();
}

} // namespace

QString SmallDisk::unshareMounts()
{
    // Whoever is not root may do it as the root of a name space of his own, in which he keeps his number.
    const auto mapped = [](auto number) {
        return QByteArray::number(number) + ' ' + QByteArray::number(number) + " 1";
    };
    const QByteArray user = mapped(::geteuid());
    const QByteArray group = mapped(::getegid());
    if (::unshare(CLONE_NEWNS) != 0) {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
            return lastError("unshare");
        }
        if (!write("/proc/self/setgroups", "deny") || !write("/proc/self/uid_map", user) ||
            !write("/proc/self/gid_map", group)) {
            return lastError("user map");
        }
    }
    return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 ? QString() : lastError("mount");
}

SmallDisk::SmallDisk(const QString &folder, int kibibytes)
    : m_folder(folder)
    , m_options("size=" + QByteArray::number(kibibytes) + "k,mode=0700")
{
    EXPECT_TRUE(QDir().mkpath(folder));
    EXPECT_EQ(::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, m_options.constData()), 0)
        << std::strerror(errno);
}

SmallDisk::~SmallDisk()
{
    ::umount2(QFile::encodeName(m_folder).constData(), MNT_DETACH);
}

void SmallDisk::fill() const
{
    const QByteArray page(::sysconf(_SC_PAGESIZE), 'x');
    QFile file(filler());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    while (file.write(page) == page.size()) {
    }
    EXPECT_TRUE(file.resize(file.size() - page.size()));
}

void SmallDisk::makeRoom() const
{
    EXPECT_TRUE(QFile::remove(filler()));
}

void SmallDisk::setAccess(Access access) const
{
    unsigned long flags = MS_REMOUNT;
    if (access == Access::ReadOnly) {
        flags |= MS_RDONLY;
    }
    EXPECT_EQ(::mount(nullptr, QFile::encodeName(m_folder).constData(), nullptr, flags, m_options.constData()), 0)
        << std::strerror(errno);
}

QString SmallDisk::filler() const
{
    return m_folder + QStringLiteral("/filler");
}

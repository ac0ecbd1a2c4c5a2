#include "tests/support/FileChanges.h"

#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <array>
#include <sys/inotify.h>
#include <unistd.h>

FileChanges::FileChanges(const QStringList &files)
    : m_inotify(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
{
    for (const QString &file : files) {
        const QFileInfo info(file);
        m_names.append(QFile::encodeName(info.fileName()));
        // One that was written without a name is created when it gets one.
        EXPECT_GE(::inotify_add_watch(m_inotify, QFile::encodeName(info.path()).constData(),
                                      IN_CLOSE_WRITE | IN_CREATE | IN_MOVED_TO),
                  0);
    }
}

FileChanges::~FileChanges()
{
    ::close(m_inotify);
}

QByteArrayList FileChanges::takeNames()
{
    QByteArrayList names;
    alignas(inotify_event) std::array<char, std::size_t{64} * 1024> buffer;
    ssize_t size = 0;
    while ((size = ::read(m_inotify, buffer.data(), buffer.size())) > 0) {
        for (ssize_t at = 0; at < size;) {
            const auto *const event = reinterpret_cast<const inotify_event *>(buffer.data() + at);
            EXPECT_FALSE(event->mask & IN_Q_OVERFLOW);
            if (const QByteArray name(event->len > 0 ? event->name : ""); m_names.contains(name)) {
                names.append(name);
            }
            at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
        }
    }
    return names;
}

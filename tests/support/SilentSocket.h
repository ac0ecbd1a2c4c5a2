#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <gtest/gtest.h>

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

/// A socket that takes connections and never says a word, as a bus does that is stuck. Its file goes with it.
class SilentSocket final
{
public:
    /// `backlog` is how many may wait to be taken, which nobody ever is; the kernel counts one more.
    explicit SilentSocket(const QString &path, int backlog = 100)
        : m_path(path.toLocal8Bit())
        , m_descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un name{};
        name.sun_family = AF_UNIX;
        EXPECT_LT(static_cast<std::size_t>(m_path.size()), sizeof name.sun_path);
        std::strncpy(name.sun_path, m_path.constData(), sizeof name.sun_path - 1);
        EXPECT_EQ(::bind(m_descriptor, reinterpret_cast<const sockaddr *>(&name), sizeof name), 0);
        EXPECT_EQ(::listen(m_descriptor, backlog), 0);
    }
    ~SilentSocket()
    {
        ::close(m_descriptor);
        QFile::remove(QString::fromLocal8Bit(m_path));
    }
    SilentSocket(const SilentSocket &) = delete;
    SilentSocket &operator=(const SilentSocket &) = delete;

    /// As a bus address.
    [[nodiscard]] QByteArray address() const { return "unix:path=" + m_path; }

private:
    QByteArray m_path;
    int m_descriptor;
};

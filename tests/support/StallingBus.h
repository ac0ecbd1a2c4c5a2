#pragma once

#include <QByteArray>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>
#include <vector>

/// A bus that takes connections, agrees to all that they say of themselves, and from then on never says a word.
class StallingBus final
{
public:
    StallingBus()
        : m_descriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un name{};
        name.sun_family = AF_UNIX;
        std::strncpy(name.sun_path, path().constData(), sizeof name.sun_path - 1);
        EXPECT_EQ(::bind(m_descriptor, reinterpret_cast<const sockaddr *>(&name), sizeof name), 0);
        EXPECT_EQ(::listen(m_descriptor, 100), 0);
        m_thread = std::thread([this] { serve(); });
    }
    ~StallingBus()
    {
        ::shutdown(m_descriptor, SHUT_RDWR);
        m_thread.join();
        ::close(m_descriptor);
    }
    StallingBus(const StallingBus &) = delete;
    StallingBus &operator=(const StallingBus &) = delete;

    [[nodiscard]] QByteArray address() const { return "unix:path=" + path(); }

private:
    [[nodiscard]] QByteArray path() const { return m_folder.filePath(QStringLiteral("bus")).toLocal8Bit(); }

    void serve() const
    {
        std::vector<int> clients;
        for (int client = 0; (client = ::accept4(m_descriptor, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
            clients.push_back(client);
            agreeWith(client);
        }
        for (const int client : clients) {
            ::close(client);
        }
    }

    static void agreeWith(int client)
    {
        QByteArray line;
        for (char byte = 0; !line.startsWith("BEGIN") && ::recv(client, &byte, 1, 0) == 1;) {
            line += byte;
            if (byte != '\n') {
                continue;
            }
            if (line.contains("AUTH ")) {
                say(client, "OK 0123456789abcdef0123456789abcdef\r\n");
            } else if (line.startsWith("NEGOTIATE")) {
                say(client, "AGREE_UNIX_FD\r\n");
            }
            line.clear();
        }
    }

    static void say(int client, const QByteArray &words)
    {
        EXPECT_EQ(::send(client, words.constData(), static_cast<std::size_t>(words.size()), MSG_NOSIGNAL),
                  words.size());
    }

    QTemporaryDir m_folder;
    int m_descriptor;
    std::thread m_thread;
};

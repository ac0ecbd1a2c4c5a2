#pragma once

#include <QString>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

/// An X server that welcomes a client and has gone when it is asked for something. It listens on the loopback, at a
/// display that is free.
class VanishingXServer final
{
public:
    VanishingXServer()
    {
        for (m_display = firstDisplay; m_display < firstDisplay + 100 && !listens(); ++m_display) {
        }
        m_thread = std::thread([this] { welcomeAndGo(); });
    }
    ~VanishingXServer()
    {
        ::shutdown(m_socket, SHUT_RDWR);
        m_thread.join();
        ::close(m_socket);
    }
    VanishingXServer(const VanishingXServer &) = delete;
    VanishingXServer &operator=(const VanishingXServer &) = delete;

    /// For DISPLAY.
    [[nodiscard]] QString display() const { return QStringLiteral("127.0.0.1:%1").arg(m_display); }

private:
    static constexpr int firstDisplay = 500;
    static constexpr int portOfDisplay0 = 6000;

    [[nodiscard]] bool listens() const
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(static_cast<std::uint16_t>(portOfDisplay0 + m_display));
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        return ::bind(m_socket, reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0 &&
               ::listen(m_socket, 1) == 0;
    }
    void welcomeAndGo() const
    {
        const int client = ::accept4(m_socket, nullptr, nullptr, SOCK_CLOEXEC);
        std::array<char, 1024> words{};
        // Of X11, accepted: version 11.0, 18 words follow, which tell of requests of any length and of one
        // screen, an empty one.
        std::array<char, 80> welcome{1, 0, 11, 0, 0, 0, 18};
        welcome[26] = welcome[27] = '\xFF';
        welcome[28] = 1;
        if (::recv(client, words.data(), words.size(), 0) > 0 &&
            ::send(client, welcome.data(), welcome.size(), MSG_NOSIGNAL) > 0) {
            EXPECT_GT(::recv(client, words.data(), words.size(), 0), 0) << "it is asked for nothing";
        }
        ::close(client);
    }

    const int m_socket = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    int m_display = 0;
    std::thread m_thread;
};

#pragma once

#include "platform/files/FileDescriptor.h"

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <array>
#include <sys/socket.h>
#include <sys/un.h>
#include <thread>

/// A socket as sway has it, at which the first message of the first client gets an answer: `answer` as it is, with the
/// header before it. The question has been `question`, when this has ended.
class FakeSway final
{
public:
    explicit FakeSway(const QByteArray &answer)
        : m_path(QFile::encodeName(m_folder.filePath(QStringLiteral("socket"))))
        , m_listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::ranges::copy(m_path, address.sun_path);
        m_isBound = ::bind(m_listener.number(), reinterpret_cast<const sockaddr *>(&address), sizeof address) == 0;
        ::listen(m_listener.number(), 1);
        m_thread = std::thread([this, answer] {
            const FileDescriptor client(::accept(m_listener.number(), nullptr, nullptr));
            if (::recv(client.number(), m_question.data(), m_question.size(), MSG_WAITALL) > 0) {
                ::send(client.number(), answer.constData(), static_cast<std::size_t>(answer.size()), MSG_NOSIGNAL);
                char more = 0;
                ::recv(client.number(), &more, 1, 0); // Until the client goes.
            }
        });
    }
    ~FakeSway() { end(); }
    FakeSway(const FakeSway &) = delete;
    FakeSway &operator=(const FakeSway &) = delete;

    /// A message of sway's: its type is that of the question for workspaces.
    static QByteArray message(const QByteArray &content)
    {
        return QByteArray("i3-ipc") + number(content.size()) + number(1) + content;
    }
    static QByteArray number(qsizetype value)
    {
        const auto small = static_cast<std::uint32_t>(value);
        return {reinterpret_cast<const char *>(&small), sizeof small};
    }

    [[nodiscard]] const QByteArray &path() const { return m_path; }
    [[nodiscard]] QByteArray question()
    {
        end();
        return {m_question.data(), static_cast<qsizetype>(m_question.size())};
    }

private:
    void end()
    {
        ::shutdown(m_listener.number(), SHUT_RDWR); // Where nobody has come.
        if (m_thread.joinable()) {
            m_thread.join();
        }
    }

    QTemporaryDir m_folder;
    QByteArray m_path;
    FileDescriptor m_listener;
    bool m_isBound = false; ///< Else nobody can connect, and the test says so.
    std::array<char, 14> m_question = {};
    std::thread m_thread;
};

#pragma once

#include "platform/files/FileDescriptor.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <future>
#include <string>
#include <unistd.h>

/// A terminal in place of this program's standard error, which nobody reads: it takes some kB, and in the end a few
/// bytes, but no line.
class UnreadTerminal final
{
public:
    UnreadTerminal()
    {
        EXPECT_EQ(::grantpt(m_reader.number()), 0);
        EXPECT_EQ(::unlockpt(m_reader.number()), 0);
        m_terminal = FileDescriptor(::open(::ptsname(m_reader.number()), O_RDWR | O_NOCTTY | O_CLOEXEC));
        EXPECT_GE(::dup2(m_terminal.number(), STDERR_FILENO), 0);
    }
    ~UnreadTerminal() { ::dup2(m_before.number(), STDERR_FILENO); }
    UnreadTerminal(const UnreadTerminal &) = delete;
    UnreadTerminal &operator=(const UnreadTerminal &) = delete;

    /// Whether `say` comes to its end. If not, the terminal is gone afterwards.
    [[nodiscard]] bool letsGo(const std::function<void()> &say)
    {
        const auto saying = std::async(std::launch::async, say);
        const bool isOver = saying.wait_for(std::chrono::seconds(20)) == std::future_status::ready;
        if (!isOver) {
            m_reader.close();
        }
        return isOver;
    }

    /// What it shows first.
    [[nodiscard]] std::string firstBytes() const
    {
        std::array<char, 64> bytes{};
        const ssize_t size = ::read(m_reader.number(), bytes.data(), bytes.size());
        return {bytes.data(), static_cast<std::size_t>(size < 0 ? 0 : size)};
    }

    /// Whether everybody who has it open as this program has would wait as before.
    [[nodiscard]] bool isStillOneThatWaits() const { return (::fcntl(m_terminal.number(), F_GETFL) & O_NONBLOCK) == 0; }

private:
    FileDescriptor m_before{::dup(STDERR_FILENO)};
    FileDescriptor m_reader{::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)};
    FileDescriptor m_terminal;
};

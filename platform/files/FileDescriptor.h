#pragma once

#include <unistd.h>
#include <utility>

/// Owns a file descriptor: closes it at destruction.
class FileDescriptor final
{
public:
    explicit FileDescriptor(int number = -1) noexcept
        : m_number(number)
    {
    }
    ~FileDescriptor() { close(); }
    FileDescriptor(FileDescriptor &&other) noexcept
        : m_number(std::exchange(other.m_number, -1))
    {
    }
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }

    /// False when the file could not be opened, or has been closed.
    explicit operator bool() const noexcept { return m_number >= 0; }
    [[nodiscard]] int number() const noexcept { return m_number; }

    /// False when the system reports only now that something has gone wrong.
    bool close() noexcept { return m_number < 0 || ::close(std::exchange(m_number, -1)) == 0; }

private:
    int m_number;
};

#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>

/// While it lives, writing to a file fails beyond `bytes`, as on a full disk.
class FullDisk final
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &m_before), 0);
        const rlimit limit{bytes, m_before.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit m_before{};
    void (*m_handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

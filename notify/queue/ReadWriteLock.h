#pragma once

#include <pthread.h>

/// A POSIX read-write lock. Locking can fail, and callers must check that.
class ReadWriteLock final
{
public:
    /// Holds the lock, if it could be locked, until destruction.
    class Hold final
    {
    public:
        ~Hold();
        Hold(const Hold &) = delete;
        Hold &operator=(const Hold &) = delete;

        [[nodiscard]] explicit operator bool() const noexcept { return m_isTaken; }

    private:
        friend class ReadWriteLock;
        explicit Hold(pthread_rwlock_t &lock) noexcept;

        pthread_rwlock_t &m_lock;
        const bool m_isTaken;
    };

    ReadWriteLock();
    ~ReadWriteLock();
    ReadWriteLock(const ReadWriteLock &) = delete;
    ReadWriteLock &operator=(const ReadWriteLock &) = delete;

    /// Waits while another thread holds the lock. Fails, without waiting, when this thread does.
    [[nodiscard]] Hold lockForWriting() noexcept { return Hold(m_lock); }

private:
    pthread_rwlock_t m_lock;
};

#include "notify/queue/ReadWriteLock.h"

ReadWriteLock::Hold::Hold(pthread_rwlock_t &lock) noexcept
    : m_lock(lock)
    , m_isTaken(pthread_rwlock_wrlock(&lock) == 0)
{
}

ReadWriteLock::Hold::~Hold()
{
    if (m_isTaken) {
        pthread_rwlock_unlock(&m_lock);
    }
}

ReadWriteLock::ReadWriteLock()
    : m_lock()
{
    pthread_rwlock_init(&m_lock, nullptr);
}

ReadWriteLock::~ReadWriteLock()
{
    pthread_rwlock_destroy(&m_lock);
}

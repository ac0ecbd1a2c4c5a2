#include "tests/notify/queue/LockRecorder.h"

#include <dlfcn.h>
#include <pthread.h>
#include <utility>

namespace
{

thread_local LockRecorder *recorder = nullptr;

/// The C library's function of that name. It is looked for once, without a lock.
template <typename Argument>
int callReal(int (*&real)(Argument *), const char *name, Argument *argument)
{
    if (!real) {
        real = reinterpret_cast<int (*)(Argument *)>(::dlsym(RTLD_NEXT, name));
    }
    return real(argument);
}

int (*realLock)(pthread_mutex_t *) = nullptr;
int (*realUnlock)(pthread_mutex_t *) = nullptr;
int (*realWriteLock)(pthread_rwlock_t *) = nullptr;
int (*realReadWriteUnlock)(pthread_rwlock_t *) = nullptr;

} // namespace

LockRecorder::LockRecorder(const void *object, std::size_t size, std::function<void(Kind, Change)> onChange)
    : m_object(static_cast<const std::byte *>(object))
    , m_size(size)
    , m_onChange(std::move(onChange))
{
    recorder = this;
}

LockRecorder::~LockRecorder()
{
    recorder = nullptr;
}

void LockRecorder::note(const void *lock, Kind kind, Change change)
{
    if (recorder && lock >= recorder->m_object && lock < recorder->m_object + recorder->m_size) {
        recorder->m_depth[static_cast<std::size_t>(kind)] += change == Change::Taken ? 1 : -1;
        recorder->m_onChange(kind, change);
    }
}

extern "C" int pthread_mutex_lock(pthread_mutex_t *mutex) noexcept
{
    const int error = callReal(realLock, "pthread_mutex_lock", mutex);
    if (error == 0) {
        LockRecorder::note(mutex, LockRecorder::Kind::Mutex, LockRecorder::Change::Taken);
    }
    return error;
}

extern "C" int pthread_mutex_unlock(pthread_mutex_t *mutex) noexcept
{
    const int error = callReal(realUnlock, "pthread_mutex_unlock", mutex);
    LockRecorder::note(mutex, LockRecorder::Kind::Mutex, LockRecorder::Change::GivenBack);
    return error;
}

extern "C" int pthread_rwlock_wrlock(pthread_rwlock_t *lock) noexcept
{
    const int error = callReal(realWriteLock, "pthread_rwlock_wrlock", lock);
    if (error == 0) {
        LockRecorder::note(lock, LockRecorder::Kind::ReadWrite, LockRecorder::Change::Taken);
    }
    return error;
}

extern "C" int pthread_rwlock_unlock(pthread_rwlock_t *lock) noexcept
{
    const int error = callReal(realReadWriteUnlock, "pthread_rwlock_unlock", lock);
    LockRecorder::note(lock, LockRecorder::Kind::ReadWrite, LockRecorder::Change::GivenBack);
    return error;
}

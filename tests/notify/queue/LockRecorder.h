#pragma once

#include <cstddef>
#include <functional>

/// Sees the locks that this thread takes and gives back, of those that are part of one object. Whoever links this has
/// the C library's locks called through it. One at a time.
class LockRecorder final
{
public:
    enum class Kind { Mutex, ReadWrite };
    enum class Change { Taken, GivenBack };

    /// `onChange` is called when a lock of the object has been taken or given back.
    LockRecorder(const void *object, std::size_t size, std::function<void(Kind, Change)> onChange);
    ~LockRecorder();
    LockRecorder(const LockRecorder &) = delete;
    LockRecorder &operator=(const LockRecorder &) = delete;

    /// How often this thread holds it.
    [[nodiscard]] int depth(Kind kind) const { return m_depth[static_cast<std::size_t>(kind)]; }

    /// For the C library's functions.
    static void note(const void *lock, Kind kind, Change change);

private:
    const std::byte *m_object;
    std::size_t m_size;
    std::function<void(Kind, Change)> m_onChange;
    int m_depth[2] = {0, 0};
};

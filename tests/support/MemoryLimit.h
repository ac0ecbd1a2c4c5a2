#pragma once

#include <QFile>
#include <QtGlobal>

#include <sys/resource.h>
#include <unistd.h>

/// While it exists, this process gets no more than so many bytes of address space beyond those that it has. Not under
/// a sanitizer, which takes more than there is.
class MemoryLimit final
{
public:
    explicit MemoryLimit(qint64 bytes)
    {
        ::getrlimit(RLIMIT_AS, &m_before);
        rlimit limit = m_before;
        QFile sizes(QStringLiteral("/proc/self/statm")); // The first of them, in pages.
        if (sizes.open(QIODevice::ReadOnly)) {
            limit.rlim_cur =
                static_cast<rlim_t>(sizes.readAll().split(' ').value(0).toLongLong() * ::sysconf(_SC_PAGESIZE) + bytes);
            m_isSet = ::setrlimit(RLIMIT_AS, &limit) == 0;
        }
    }
    ~MemoryLimit() { ::setrlimit(RLIMIT_AS, &m_before); }
    MemoryLimit(const MemoryLimit &) = delete;
    MemoryLimit &operator=(const MemoryLimit &) = delete;

    /// Not where the system does not tell what a process has.
    [[nodiscard]] bool isSet() const noexcept { return m_isSet; }

private:
    bool m_isSet = false;
    rlimit m_before{};
};

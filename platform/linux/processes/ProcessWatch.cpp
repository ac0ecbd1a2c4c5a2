#include "platform/processes/ProcessWatch.h"

#include <cerrno>
#include <memory>
#include <poll.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{
/// Owns a descriptor of a process, which is readable once that has ended.
class ProcessDescriptor final
{
public:
    // By the call's number, for Debian 12's C library is the first that has a function for it.
    explicit ProcessDescriptor(pid_t pid)
        : m_number(static_cast<int>(::syscall(SYS_pidfd_open, pid, 0)))
        , m_wasGone(m_number < 0 && errno == ESRCH)
    {
    }
    ~ProcessDescriptor()
    {
        if (m_number >= 0) {
            ::close(m_number);
        }
    }
    ProcessDescriptor(const ProcessDescriptor &) = delete;
    ProcessDescriptor &operator=(const ProcessDescriptor &) = delete;

    [[nodiscard]] bool hasEnded() const
    {
        pollfd end{m_number, POLLIN, 0}; // Without a descriptor it is passed over.
        return m_wasGone || ::poll(&end, 1, 0) > 0;
    }

private:
    int m_number;
    bool m_wasGone;
};
} // namespace

std::function<bool()> watchProcess(pid_t pid)
{
    return [process = std::make_shared<const ProcessDescriptor>(pid)] { return process->hasEnded(); };
}

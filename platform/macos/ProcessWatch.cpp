#include "platform/processes/ProcessWatch.h"

#include <cstdint>
#include <optional>
#include <sys/sysctl.h>

namespace
{

/// Stands for the start of a process that has ended, which no process has.
constexpr std::int64_t ended = 0;

/// When the process was started, in microseconds; nothing where the kernel does not tell.
std::optional<std::int64_t> startOf(pid_t pid)
{
    kinfo_proc process{};
    std::size_t size = sizeof process;
    int question[] = {CTL_KERN, KERN_PROC, KERN_PROC_PID, pid};
    if (::sysctl(question, std::size(question), &process, &size, nullptr, 0) != 0) {
        return std::nullopt;
    }
    // One that nobody has waited for yet is still told of.
    if (size == 0 || process.kp_proc.p_stat == SZOMB) {
        return ended;
    }
    return std::int64_t{process.kp_proc.p_starttime.tv_sec} * 1'000'000 + process.kp_proc.p_starttime.tv_usec;
}

} // namespace

std::function<bool()> watchProcess(pid_t pid)
{
    return [pid, start = startOf(pid)] {
        const std::optional<std::int64_t> now = startOf(pid);
        return start && now && (*now == ended || *now != *start);
    };
}

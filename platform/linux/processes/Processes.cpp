#include "platform/linux/processes/RunningProcess.h"

#include <Carbon/Processes.h>

#include <cstdlib>
#include <limits>
#include <unistd.h>

// What needs the X server or the bus stands in ProcessList.cpp, so that a program that only asks for these does not
// link them.

OSErr GetCurrentProcess(ProcessSerialNumber *psn)
{
    if (!psn) {
        return paramErr;
    }
    *psn = {0, static_cast<UInt32>(::getpid())};
    return noErr;
}

OSStatus GetProcessPID(const ProcessSerialNumber *psn, pid_t *pid)
{
    if (!psn || !pid) {
        return paramErr;
    }
    constexpr UInt32 maxPid = std::numeric_limits<pid_t>::max();
    if (psn->highLongOfPSN != 0 || psn->lowLongOfPSN > maxPid ||
        !isRunningProcess(static_cast<pid_t>(psn->lowLongOfPSN))) {
        return procNotFound;
    }
    *pid = static_cast<pid_t>(psn->lowLongOfPSN);
    return noErr;
}

OSErr SameProcess(const ProcessSerialNumber *a, const ProcessSerialNumber *b, Boolean *result)
{
    if (!a || !b || !result) {
        return paramErr;
    }
    const auto isNone = [](const ProcessSerialNumber &psn) {
        return psn.highLongOfPSN == 0 && psn.lowLongOfPSN == kNoProcess;
    };
    if (isNone(*a) || isNone(*b)) {
        return procNotFound;
    }
    *result = a->highLongOfPSN == b->highLongOfPSN && a->lowLongOfPSN == b->lowLongOfPSN;
    return noErr;
}

void ExitToShell()
{
    // Ends the process without taking anything apart, once events that were just sent have left it.
    std::quick_exit(0);
}

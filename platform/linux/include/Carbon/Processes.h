#pragma once

#include <Carbon/CoreFoundation.h>
#include <Carbon/MacTypes.h>

#include <sys/types.h>

/// The few Process Manager calls that the agent makes. A process is known by its serial number, which here is {0, pid};
/// {0, 0} is no process. The list of processes is that of /proc, cut down to this session's user. Main thread only.

struct ProcessSerialNumber {
    UInt32 highLongOfPSN;
    UInt32 lowLongOfPSN;
};

enum : UInt32 { kNoProcess = 0 };
enum : UInt32 { kProcessDictionaryIncludeAllInformationMask = 0xFFFFFFFF };

struct ProcessInfoRec {
    UInt32 processInfoLength;   ///< The caller's: sizeof(ProcessInfoRec).
    unsigned char *processName; ///< Apple's record has it: a buffer for the name. Ignored here.
    ProcessSerialNumber processNumber;
    UInt32 processType;      ///< 'APPL' for the tray host, 0 for all else.
    OSType processSignature; ///< 'dock' for the tray host, 0 for all else.
    UInt32 processMode;
};

OSErr GetCurrentProcess(ProcessSerialNumber *psn);

/// The next process after `psn`: the tray host first, so that who looks for it need not look at thousands of others,
/// then the others in order of process ID. {0, 0} begins a pass over the processes that run then. procNotFound at the
/// end of the list.
OSErr GetNextProcess(ProcessSerialNumber *psn);

/// procNotFound when the process has ended. The tray host, that is the owner of the tray selection of this X display or
/// else of the bus name org.kde.StatusNotifierWatcher, reports the type and signature of the Dock.
OSErr GetProcessInformation(const ProcessSerialNumber *psn, ProcessInfoRec *info);

/// "CFBundleIdentifier", which only the tray host has: "com.apple.dock". The caller's to release. Null when the process
/// has ended.
CFDictionaryRef ProcessInformationCopyDictionary(const ProcessSerialNumber *psn, UInt32 mask);

/// procNotFound, with *pid untouched, when the serial number names no running process.
OSStatus GetProcessPID(const ProcessSerialNumber *psn, pid_t *pid);

/// procNotFound, with *result untouched, when either is {0, 0}, which names no process: not even two of them are the
/// same process.
OSErr SameProcess(const ProcessSerialNumber *a, const ProcessSerialNumber *b, Boolean *result);

/// Ends this process at once, with status 0 and without any teardown. Events that were sent before still leave it.
[[noreturn]] void ExitToShell();

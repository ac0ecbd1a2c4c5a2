#pragma once

#include <Availability.h>
#include <CoreFoundation/CoreFoundation.h>
#include <MacTypes.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

struct ProcessSerialNumber {
    UInt32 highLongOfPSN;
    UInt32 lowLongOfPSN;
};
typedef struct ProcessSerialNumber ProcessSerialNumber;

enum { kNoProcess = 0 };
enum { kProcessDictionaryIncludeAllInformationMask = (int)0xFFFFFFFF };

struct ProcessInfoRec {
    UInt32 processInfoLength;
    StringPtr processName;
    ProcessSerialNumber processNumber;
    UInt32 processType;
    OSType processSignature;
    UInt32 processMode;
    Ptr processLocation;
    UInt32 processSize;
    UInt32 processFreeMem;
    ProcessSerialNumber processLauncher;
    UInt32 processLaunchDate;
    UInt32 processActiveTime;
    void *processAppRef;
};
typedef struct ProcessInfoRec ProcessInfoRec;

OSErr GetCurrentProcess(ProcessSerialNumber *psn) KIV_DEPRECATED_CALL;
OSErr GetNextProcess(ProcessSerialNumber *psn) KIV_DEPRECATED_CALL;
OSErr GetProcessInformation(const ProcessSerialNumber *psn, ProcessInfoRec *info) KIV_DEPRECATED_CALL;
CFDictionaryRef ProcessInformationCopyDictionary(const ProcessSerialNumber *psn, UInt32 mask) KIV_DEPRECATED_CALL;
OSStatus GetProcessPID(const ProcessSerialNumber *psn, pid_t *pid) KIV_DEPRECATED_CALL;
OSErr SameProcess(const ProcessSerialNumber *a, const ProcessSerialNumber *b, Boolean *result) KIV_DEPRECATED_CALL;
void ExitToShell(void) KIV_DEPRECATED_CALL;

#ifdef __cplusplus
}
#endif

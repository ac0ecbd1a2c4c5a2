#pragma once

/// The types of numbers of Apple's C interfaces.
typedef unsigned char UInt8;
typedef signed short SInt16;
typedef unsigned short UInt16;
typedef signed int SInt32;
typedef unsigned int UInt32;
typedef unsigned char Boolean;
typedef unsigned char *StringPtr;
typedef char *Ptr;
typedef long Size;
typedef UInt32 FourCharCode;
typedef FourCharCode OSType;
typedef SInt16 OSErr;
typedef SInt32 OSStatus;
typedef void *SRefCon;

enum { noErr = 0 };
enum {
    paramErr = -50,
    memFullErr = -108,
    procNotFound = -600,
    connectionInvalid = -609,
    errAECoercionFail = -1700,
    errAEDescNotFound = -1701,
    errAEEventNotHandled = -1708,
    errAETimeout = -1712,
    errAEHandlerNotFound = -1717,
    errAEEventFailed = -10000
};

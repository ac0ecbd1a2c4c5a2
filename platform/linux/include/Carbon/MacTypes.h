#pragma once

#include "platform/FourCharCode.h"

#include <cstdint>

using UInt8 = std::uint8_t;
using SInt16 = std::int16_t;
using UInt32 = std::uint32_t;
using SInt32 = std::int32_t;
using Boolean = unsigned char;
using Size = long;
using FourCharCode = UInt32;
using OSType = FourCharCode;
using OSErr = SInt16;
using OSStatus = SInt32;
using SRefCon = void *;

/// The error numbers of the calls declared here; the values are those of Apple's MacErrors.h.
enum : OSErr {
    noErr = 0,
    paramErr = -50,               ///< A pointer that must be given was null, or a value out of range.
    memFullErr = -108,            ///< No memory.
    procNotFound = -600,          ///< No such process, or none that receives events.
    connectionInvalid = -609,     ///< There is no session bus to send on.
    errAECoercionFail = -1700,    ///< The parameter is there, but of another type.
    errAEDescNotFound = -1701,    ///< No such parameter or attribute.
    errAEEventNotHandled = -1708, ///< No handler for this class and ID.
    errAETimeout = -1712,         ///< The reply did not come in time.
    errAEHandlerNotFound = -1717, ///< No such handler is installed.
    errAEEventFailed = -10000     ///< The handler failed.
};

#pragma once

#include <Carbon/MacTypes.h>

/// The few Apple Event Manager calls that the agent makes, over the session bus (com.tamborel.kivune.AppleEvents, see
/// resources/dbus/). No parameter is ever coerced from one type to another. Main thread only.

using AEKeyword = FourCharCode;
using AEEventClass = FourCharCode;
using AEEventID = FourCharCode;
using DescType = FourCharCode;
using AEDataStorage = struct OpaqueAEDataStorage *;
using AEReturnID = SInt16;
using AETransactionID = SInt32;
using AESendMode = SInt32;
using AESendPriority = SInt16;

struct AEDesc {
    DescType descriptorType;
    AEDataStorage dataHandle; ///< Owned; given up by AEDisposeDesc.
};
using AEAddressDesc = AEDesc;
using AppleEvent = AEDesc;

using AEEventHandlerUPP = OSErr (*)(const AppleEvent *event, AppleEvent *reply, SRefCon refcon);
using AEIdleUPP = Boolean (*)(void *);
using AEFilterUPP = Boolean (*)(void *);

inline constexpr DescType typeNull = fourCharCode("null");
inline constexpr DescType typeSInt32 = fourCharCode("long");
inline constexpr DescType typeUInt32 = fourCharCode("magn");
inline constexpr DescType typeProcessSerialNumber = fourCharCode("psn ");
inline constexpr DescType typeKernelProcessID = fourCharCode("kpid");
inline constexpr DescType typeAppleEvent = fourCharCode("aevt");
/// Attribute: the sending process's ID as the transport knows it, typeSInt32; 0 when the sender had ended before the
/// event was received. Absent from events built here.
inline constexpr AEKeyword keySenderPIDAttr = fourCharCode("spid");

inline constexpr AEReturnID kAutoGenerateReturnID = -1;
inline constexpr AETransactionID kAnyTransactionID = 0;
inline constexpr AESendMode kAENoReply = 1;
inline constexpr AESendMode kAEWaitReply = 3;
inline constexpr AESendPriority kAENormalPriority = 0;
inline constexpr SInt32 kAEDefaultTimeout = -1;
inline constexpr SInt32 kNoTimeOut = -2;

/// A descriptor that holds a copy of `size` bytes. *result is typeNull when the call fails.
OSErr AECreateDesc(DescType type, const void *data, Size size, AEDesc *result);
/// Gives up what the descriptor holds and makes it typeNull. Disposing of a typeNull one is no error.
OSErr AEDisposeDesc(AEDesc *desc);

/// An event without parameters. `target` is copied.
OSErr AECreateAppleEvent(AEEventClass eventClass, AEEventID eventID, const AEAddressDesc *target, AEReturnID returnID,
                         AETransactionID transactionID, AppleEvent *result);
/// Sets or replaces a parameter. memFullErr, and nothing changed, when the event would hold more than 32 MiB.
OSErr AEPutParamPtr(AppleEvent *event, AEKeyword keyword, DescType type, const void *data, Size size);
/// Copies the parameter, at most `maximumSize` bytes of it; the rest of the buffer is not touched. *actualSize (may be
/// null) is its full size. errAEDescNotFound when there is none, errAECoercionFail when it has another type.
OSErr AEGetParamPtr(const AppleEvent *event, AEKeyword keyword, DescType desiredType, DescType *actualType, void *data,
                    Size maximumSize, Size *actualSize);
/// The same for an attribute; keySenderPIDAttr is the only one.
OSErr AEGetAttributePtr(const AppleEvent *event, AEKeyword keyword, DescType desiredType, DescType *actualType,
                        void *data, Size maximumSize, Size *actualSize);

/// Sends the event to the process that its address (typeKernelProcessID) names. procNotFound before anything is sent
/// when that is 0, not running, or receives no events; connectionInvalid without a bus; paramErr for an address that is
/// no process ID and for codes with a zero byte, which cannot travel. *reply, if given, becomes typeNull.
///
/// Every mode but kAEWaitReply returns at once; an event that was sent just before the program ends, by exit(), by
/// returning from main() or by ExitToShell, still leaves it. With kAEWaitReply the handler's status is the
/// result. The wait for it blocks, and ends with errAETimeout after the time-out (in sixtieths of a second), or after a
/// minute if that is less; kAEDefaultTimeout and kNoTimeOut are a minute. Either may last 0.5 s longer when the bus is
/// slow.
OSErr AESend(const AppleEvent *event, AppleEvent *reply, AESendMode mode, AESendPriority priority,
             SInt32 timeOutInTicks, AEIdleUPP idle, AEFilterUPP filter);

/// Installs or replaces the handler of a class and ID. From the first one on this process receives events: it owns the
/// bus name com.tamborel.kivune.p<pid>, now and whenever the bus comes back.
///
/// Handlers are called from the event loop, nested ones included; what one throws is logged, and its status is
/// errAEEventFailed. There is one table of handlers: whether it is a system handler does not matter.
OSErr AEInstallEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler, SRefCon refcon,
                            Boolean isSystemHandler);
/// errAEHandlerNotFound when that handler is not the installed one. Gives the bus name back with the last handler.
OSErr AERemoveEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                           Boolean isSystemHandler);

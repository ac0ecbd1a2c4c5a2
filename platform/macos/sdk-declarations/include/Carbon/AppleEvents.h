#pragma once

#include <MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef FourCharCode AEKeyword;
typedef FourCharCode AEEventClass;
typedef FourCharCode AEEventID;
typedef FourCharCode DescType;
typedef struct OpaqueAEDataStorageType **AEDataStorage;
typedef SInt16 AEReturnID;
typedef SInt32 AETransactionID;
typedef SInt32 AESendMode;
typedef SInt16 AESendPriority;

struct AEDesc {
    DescType descriptorType;
    AEDataStorage dataHandle;
};
typedef struct AEDesc AEDesc;
typedef AEDesc AEAddressDesc;
typedef AEDesc AppleEvent;

typedef OSErr (*AEEventHandlerUPP)(const AppleEvent *event, AppleEvent *reply, SRefCon refcon);
typedef struct OpaqueAEIdle *AEIdleUPP;
typedef struct OpaqueAEFilter *AEFilterUPP;

enum {
    typeNull = 'null',
    typeSInt32 = 'long',
    typeUInt32 = 'magn',
    typeProcessSerialNumber = 'psn ',
    typeKernelProcessID = 'kpid',
    typeAppleEvent = 'aevt',
    keySenderPIDAttr = 'spid'
};
enum { kAutoGenerateReturnID = -1, kAnyTransactionID = 0 };
enum { kAENoReply = 1, kAEWaitReply = 3, kAENormalPriority = 0, kAEDefaultTimeout = -1, kNoTimeOut = -2 };

OSErr AECreateDesc(DescType type, const void *data, Size size, AEDesc *result);
OSErr AEDisposeDesc(AEDesc *desc);
OSErr AECreateAppleEvent(AEEventClass eventClass, AEEventID eventID, const AEAddressDesc *target, AEReturnID returnID,
                         AETransactionID transactionID, AppleEvent *result);
OSErr AEPutParamPtr(AppleEvent *event, AEKeyword keyword, DescType type, const void *data, Size size);
OSErr AEGetParamPtr(const AppleEvent *event, AEKeyword keyword, DescType desiredType, DescType *actualType, void *data,
                    Size maximumSize, Size *actualSize);
OSErr AEGetAttributePtr(const AppleEvent *event, AEKeyword keyword, DescType desiredType, DescType *actualType,
                        void *data, Size maximumSize, Size *actualSize);
OSErr AESend(const AppleEvent *event, AppleEvent *reply, AESendMode mode, AESendPriority priority,
             SInt32 timeOutInTicks, AEIdleUPP idle, AEFilterUPP filter);
OSErr AEInstallEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler, SRefCon refcon,
                            Boolean isSystemHandler);
OSErr AERemoveEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler,
                           Boolean isSystemHandler);

#ifdef __cplusplus
}
#endif

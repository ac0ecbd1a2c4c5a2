#pragma once

#include <MacTypes.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef const void *CFTypeRef;
typedef const struct __CFString *CFStringRef;
typedef const struct __CFNumber *CFNumberRef;
typedef const struct __CFBoolean *CFBooleanRef;
typedef const struct __CFDictionary *CFDictionaryRef;
typedef const struct __CFArray *CFArrayRef;
typedef const struct __CFAllocator *CFAllocatorRef;
typedef const struct __CFURL *CFURLRef;
typedef struct __CFBundle *CFBundleRef;
typedef struct __CFNotificationCenter *CFNotificationCenterRef;
typedef CFStringRef CFNotificationName;
typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef UInt32 CFStringEncoding;

enum CFNumberType : CFIndex { kCFNumberSInt32Type = 3 };
typedef enum CFNumberType CFNumberType;
enum { kCFStringEncodingUTF8 = 0x08000100 };

extern const CFAllocatorRef kCFAllocatorDefault;
extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;

void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);

CFStringRef __CFStringMakeConstantString(const char *text);
#ifdef __APPLE__
/// The compiler makes the constant itself.
#define CFSTR(text) ((CFStringRef)__builtin___CFStringMakeConstantString("" text ""))
#else
#define CFSTR(text) __CFStringMakeConstantString("" text "")
#endif
CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char *text, CFStringEncoding encoding);
CFTypeID CFStringGetTypeID(void);
Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex capacity, CFStringEncoding encoding);

CFTypeID CFNumberGetTypeID(void);
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void *value);
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void *value);
CFTypeID CFBooleanGetTypeID(void);
Boolean CFBooleanGetValue(CFBooleanRef boolean);

struct CFDictionaryKeyCallBacks;
struct CFDictionaryValueCallBacks;
struct CFArrayCallBacks;
extern const struct CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const struct CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;
extern const struct CFArrayCallBacks kCFTypeArrayCallBacks;
CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void **keys, const void **values, CFIndex count,
                                   const struct CFDictionaryKeyCallBacks *keyCallBacks,
                                   const struct CFDictionaryValueCallBacks *valueCallBacks);
const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key);
CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void **values, CFIndex count,
                         const struct CFArrayCallBacks *callBacks);
CFIndex CFArrayGetCount(CFArrayRef array);
const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase, UInt8 *buffer, CFIndex capacity);

CFBundleRef CFBundleGetMainBundle(void);
CFURLRef CFBundleCopyResourcesDirectoryURL(CFBundleRef bundle);
CFURLRef CFBundleCopySupportFilesDirectoryURL(CFBundleRef bundle);

typedef void (*CFNotificationCallback)(CFNotificationCenterRef centre, void *observer, CFNotificationName name,
                                       const void *object, CFDictionaryRef userInfo);
enum CFNotificationSuspensionBehavior : CFIndex { CFNotificationSuspensionBehaviorDeliverImmediately = 4 };
typedef enum CFNotificationSuspensionBehavior CFNotificationSuspensionBehavior;
CFNotificationCenterRef CFNotificationCenterGetDistributedCenter(void);
void CFNotificationCenterAddObserver(CFNotificationCenterRef centre, const void *observer,
                                     CFNotificationCallback callback, CFStringRef name, const void *object,
                                     CFNotificationSuspensionBehavior suspensionBehaviour);
void CFNotificationCenterRemoveEveryObserver(CFNotificationCenterRef centre, const void *observer);
void CFNotificationCenterPostNotification(CFNotificationCenterRef centre, CFNotificationName name, const void *object,
                                          CFDictionaryRef userInfo, Boolean deliverImmediately);

#ifdef __cplusplus
}
#endif

#pragma once

#include <Carbon/MacTypes.h>

#include <cstdint>

/// The few Core Foundation calls that the agent makes, with the meaning that Apple documents for them. Objects are
/// counted: what a function with Create or Copy in its name returns is the caller's to CFRelease, what one with Get
/// returns is not. Values are immutable. Not thread-safe beyond the count itself.

using CFTypeRef = const void *;
using CFStringRef = const struct __CFString *;
using CFNumberRef = const struct __CFNumber *;
using CFBooleanRef = const struct __CFBoolean *;
using CFDictionaryRef = const struct __CFDictionary *;
using CFArrayRef = const struct __CFArray *;
using CFAllocatorRef = const struct __CFAllocator *;
using CFIndex = long;
using CFTypeID = unsigned long;
using CFNumberType = CFIndex;
using CFStringEncoding = UInt32;

inline constexpr CFAllocatorRef kCFAllocatorDefault = nullptr;
inline constexpr CFNumberType kCFNumberSInt32Type = 3;
inline constexpr CFStringEncoding kCFStringEncodingUTF8 = 0x08000100;
extern const CFBooleanRef kCFBooleanTrue;
extern const CFBooleanRef kCFBooleanFalse;

/// Null is allowed, and ignored (Apple's own call ends the process).
void CFRelease(CFTypeRef object);
CFTypeID CFGetTypeID(CFTypeRef object);

CFTypeID CFStringGetTypeID();
CFTypeID CFNumberGetTypeID();
CFTypeID CFBooleanGetTypeID();

/// Copies the text with its terminating zero byte. False when it does not fit into `capacity` bytes, or for an encoding
/// other than UTF-8.
Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex capacity, CFStringEncoding encoding);
/// The one constant string of this text, in UTF-8; never released. Null for null.
CFStringRef __CFStringMakeConstantString(const char *text);
#define CFSTR(text) __CFStringMakeConstantString("" text "")

/// Null for a number type other than the one above.
CFNumberRef CFNumberCreate(CFAllocatorRef allocator, CFNumberType type, const void *value);
/// Booleans are read as 0 and 1. False, and nothing stored, when it is neither, or for another number type.
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void *value);
Boolean CFBooleanGetValue(CFBooleanRef boolean);

struct CFDictionaryKeyCallBacks;
struct CFDictionaryValueCallBacks;
struct CFArrayCallBacks;
extern const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks;
extern const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks;
extern const CFArrayCallBacks kCFTypeArrayCallBacks;

/// Keys are CFStrings, compared by their text; keys and values are retained. The call-backs are those of CF types.
CFDictionaryRef CFDictionaryCreate(CFAllocatorRef allocator, const void **keys, const void **values, CFIndex count,
                                   const CFDictionaryKeyCallBacks *keyCallBacks,
                                   const CFDictionaryValueCallBacks *valueCallBacks);
/// Null when there is no such key.
const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key);

/// Values are retained; a null one stands for a missing element.
CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const void **values, CFIndex count,
                         const CFArrayCallBacks *callBacks);
CFIndex CFArrayGetCount(CFArrayRef array);
/// Null when `index` is out of range.
const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

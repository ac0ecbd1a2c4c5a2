#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef double CGFloat;
typedef uint32_t CGDirectDisplayID;
typedef struct CGDisplayMode *CGDisplayModeRef;
typedef struct __CGEvent *CGEventRef;
typedef struct __CGEventSource *CGEventSourceRef;

struct CGPoint {
    CGFloat x;
    CGFloat y;
};
typedef struct CGPoint CGPoint;

struct CGSize {
    CGFloat width;
    CGFloat height;
};
typedef struct CGSize CGSize;

struct CGRect {
    CGPoint origin;
    CGSize size;
};
typedef struct CGRect CGRect;

CFDictionaryRef CGSessionCopyCurrentDictionary(void);

CGDirectDisplayID CGMainDisplayID(void);
CGRect CGDisplayBounds(CGDirectDisplayID display);
extern const CFStringRef kCGDisplayShowDuplicateLowResolutionModes;
CFArrayRef CGDisplayCopyAllDisplayModes(CGDirectDisplayID display, CFDictionaryRef options);
CGDisplayModeRef CGDisplayCopyDisplayMode(CGDirectDisplayID display);
size_t CGDisplayModeGetWidth(CGDisplayModeRef mode);
size_t CGDisplayModeGetHeight(CGDisplayModeRef mode);
bool CGDisplayModeIsUsableForDesktopGUI(CGDisplayModeRef mode);
void CGDisplayModeRelease(CGDisplayModeRef mode);

CGEventRef CGEventCreate(CGEventSourceRef source);
CGPoint CGEventGetLocation(CGEventRef event);

#ifdef __cplusplus
}
#endif

#pragma once

#include <Carbon/CoreGraphics.h>

#include <stdbool.h>

typedef bool BOOL;
#define YES true
#define NO false
#define nil nullptr
typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;

__attribute__((objc_root_class))
@interface NSObject
+ (instancetype)alloc;
- (instancetype)init;
+ (Class)class;
- (BOOL)isKindOfClass:(Class)aClass;
@end

@interface NSStatusBar : NSObject
@property(class, readonly) NSStatusBar *systemStatusBar;
@property(readonly) CGFloat thickness;
@end

@interface NSApplication : NSObject
@property(class, readonly) NSApplication *sharedApplication;
- (void)activate __attribute__((availability(macos, introduced = 14.0)));
- (void)activateIgnoringOtherApps:(BOOL)ignoreOtherApps __attribute__((deprecated));
@end

typedef NSInteger NSWindowLevel;
static const NSWindowLevel NSStatusWindowLevel = 25;

typedef NSUInteger NSWindowStyleMask;
static const NSWindowStyleMask NSWindowStyleMaskNonactivatingPanel = 1 << 7;

@interface NSWindow : NSObject
@property NSWindowLevel level;
@property NSWindowStyleMask styleMask;
- (void)makeKeyWindow;
- (void)orderFrontRegardless;
@end

@interface NSPanel : NSWindow
@end

@interface NSView : NSObject
@property(readonly) NSWindow *window;
@end

@class NSMenuItem;
@interface NSMenu : NSObject
- (BOOL)popUpMenuPositioningItem:(NSMenuItem *)item atLocation:(NSPoint)location inView:(NSView *)view;
- (void)cancelTracking;
@end

#pragma once

#include <MacTypes.h>

/// Types that Apple's umbrella header brings along and that the agent has no use for. They have neither prefix nor
/// namespace, so that a type of ours with such a name does not compile on macOS.

typedef UInt32 MenuCommand;
typedef UInt16 MenuItemIndex;
typedef SInt16 MenuID;
typedef UInt32 MenuAttributes;
typedef UInt32 MenuItemAttributes;
typedef struct OpaqueMenuRef *MenuRef;
typedef UInt32 WindowClass;
typedef struct OpaqueWindowPtr *WindowRef;
typedef struct OpaqueControlRef *ControlRef;
typedef struct OpaqueEventRef *EventRef;
typedef struct OpaqueIconRef *IconRef;
typedef struct OpaqueCollection *Collection;
typedef UInt16 EventKind;
typedef UInt16 EventMask;
typedef SInt16 AlertType;
typedef unsigned char Byte;
typedef signed char SignedByte;
typedef unsigned char Style;
typedef SInt32 Duration;
typedef SInt32 Fixed;
typedef SInt32 Fract;
typedef unsigned long ItemCount;
typedef unsigned long ByteCount;
typedef Ptr *Handle;
typedef unsigned char Str255[256];

struct Point {
    short v;
    short h;
};
typedef struct Point Point;

struct Rect {
    short top;
    short left;
    short bottom;
    short right;
};
typedef struct Rect Rect;

struct Cursor {
    SInt16 data[16];
    SInt16 mask[16];
    Point hotSpot;
};
typedef struct Cursor Cursor;

#pragma once

#include <Carbon/Carbon.h>
#include <QSize>

/// The size of the main display of the test's X server now, in pixels.
[[nodiscard]] inline QSize mainDisplaySize()
{
    const CGRect bounds = CGDisplayBounds(CGMainDisplayID());
    return {static_cast<int>(bounds.size.width), static_cast<int>(bounds.size.height)};
}

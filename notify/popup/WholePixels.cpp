#include "notify/popup/WholePixels.h"

#include <cmath>

namespace
{

int wholePixels(float length)
{
    return static_cast<int>(std::lround(length));
}

} // namespace

int textWidth(const NSSize &contentSize)
{
    return wholePixels(contentSize.width);
}

QRect inWindow(const NSRect &frame, const NSSize &window)
{
    const int left = wholePixels(frame.origin.x);
    const int top = wholePixels(window.height - frame.origin.y - frame.size.height);
    const int right = wholePixels(frame.origin.x + frame.size.width);
    const int bottom = wholePixels(window.height - frame.origin.y);
    return QRect(left, top, right - left, bottom - top);
}

QSize sizeInWindows(const NSSize &size)
{
    return {wholePixels(size.width), wholePixels(size.height)};
}

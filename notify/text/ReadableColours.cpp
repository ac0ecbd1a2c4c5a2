#include "notify/text/ReadableColours.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace
{

/// From 1, for no difference, to 21, for black on white.
double contrast(const QColor &one, const QColor &other)
{
    const auto luminance = [](const QColor &colour) {
        const auto linear = [](double part) {
            return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
    };
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

} // namespace

bool isReadable(const QColor &text, const QColor &background)
{
    constexpr double minContrast = 2;
    return contrast(text, background) >= minContrast;
}

bool isSeenToDiffer(const QColor &one, const QColor &other)
{
    constexpr int maxUnseenDifference = 48;
    return std::abs(one.red() - other.red()) + std::abs(one.green() - other.green()) +
               std::abs(one.blue() - other.blue()) >
           maxUnseenDifference;
}

QColor readableOn(const QColor &background)
{
    return isReadable(Qt::black, background) ? QColor(Qt::black) : QColor(Qt::white);
}

QColor linkColourOn(const QColor &background)
{
    // Pure blue cannot be read on a dark ground.
    constexpr QColor onDark(0x6c, 0xb4, 0xff);
    return isReadable(Qt::blue, background) ? QColor(Qt::blue) : onDark;
}

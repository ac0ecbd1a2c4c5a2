#include "notify/popup/RoundedRegion.h"

#include <QList>

#include <algorithm>
#include <cmath>

namespace
{

/// How many pixels of a row lie before a quarter circle; the first row is the outermost.
int pixelsBeforeCircle(int row, int radius)
{
    constexpr double middle = 0.5;
    const double height = radius - row - middle;
    const double before = radius - std::sqrt(radius * radius - height * height);
    return static_cast<int>(std::ceil(before - middle));
}

} // namespace

QRegion roundedRegion(const QRect &frame, int radius)
{
    if (frame.isEmpty()) {
        return {};
    }
    radius = std::clamp(radius, 0, std::min(frame.width(), frame.height()) / 2);
    // In the order from top to bottom that QRegion asks for.
    QList<QRect> parts;
    parts.reserve(2 * radius + 1);
    // Neighbours of one width are one part, or their seams would show at a scale that is no whole number.
    const auto addRows = [&](int y, int height, int inset) {
        const QRect rows(frame.left() + inset, y, frame.width() - 2 * inset, height);
        if (!parts.isEmpty() && parts.last().left() == rows.left()) {
            parts.last().setBottom(rows.bottom());
        } else {
            parts.append(rows);
        }
    };
    for (int row = 0; row < radius; ++row) {
        addRows(frame.top() + row, 1, pixelsBeforeCircle(row, radius));
    }
    if (const int height = frame.height() - 2 * radius; height > 0) {
        addRows(frame.top() + radius, height, 0);
    }
    for (int row = radius - 1; row >= 0; --row) {
        addRows(frame.bottom() - row, 1, pixelsBeforeCircle(row, radius));
    }
    QRegion region;
    region.setRects(parts.constData(), static_cast<int>(parts.size()));
    return region;
}

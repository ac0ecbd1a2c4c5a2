#include "RoundedRegion.h"

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
    const auto addRow = [&](int y, int row) {
        const int inset = pixelsBeforeCircle(row, radius);
        parts.append(QRect(frame.left() + inset, y, frame.width() - 2 * inset, 1));
    };
    for (int row = 0; row < radius; ++row) {
        addRow(frame.top() + row, row);
    }
    if (const int height = frame.height() - 2 * radius; height > 0) {
        parts.append(QRect(frame.left(), frame.top() + radius, frame.width(), height));
    }
    for (int row = radius - 1; row >= 0; --row) {
        addRow(frame.bottom() - row, row);
    }
    QRegion region;
    region.setRects(parts.constData(), static_cast<int>(parts.size()));
    return region;
}

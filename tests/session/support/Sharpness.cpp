#include "tests/session/support/Sharpness.h"

#include <QList>
#include <QPainter>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <numeric>

namespace
{

int greyDifference(QRgb one, QRgb other)
{
    return std::abs(qGray(one) - qGray(other));
}

double averageDifference(const QImage &one, const QImage &other)
{
    double sum = 0;
    for (int y = 0; y < one.height(); ++y) {
        for (int x = 0; x < one.width(); ++x) {
            sum += greyDifference(one.pixel(x, y), other.pixel(x, y));
        }
    }
    return sum / (one.width() * one.height());
}

/// After so many pixels a pixel begins where a point does.
int pixelsOfWholePoints(double scale)
{
    int pixels = 1;
    while (pixels / scale != qRound(pixels / scale)) {
        ++pixels;
    }
    return pixels;
}

} // namespace

double Sharpness::steepness(const QImage &picture)
{
    QList<int> steps;
    for (int y = 1; y < picture.height(); ++y) {
        for (int x = 1; x < picture.width(); ++x) {
            const QRgb pixel = picture.pixel(x, y);
            steps.append(std::max(greyDifference(pixel, picture.pixel(x - 1, y)),
                                  greyDifference(pixel, picture.pixel(x, y - 1))));
        }
    }
    const qsizetype count = steps.size() / 100 + 1;
    std::partial_sort(steps.begin(), steps.begin() + count, steps.end(), std::greater());
    return std::accumulate(steps.cbegin(), steps.cbegin() + count, 0.0) / static_cast<double>(count);
}

double Sharpness::lossInPoints(const QImage &picture, double scale)
{
    const int period = pixelsOfWholePoints(scale);
    double least = 255;
    // Nobody says where the first point of the picture begins.
    for (int top = 0; top < period; ++top) {
        for (int left = 0; left < period; ++left) {
            const int width = (picture.width() - left) / period * period;
            const int height = (picture.height() - top) / period * period;
            const QImage part = picture.copy(left, top, width, height);
            least = std::min(least, averageDifference(part, part.scaled(part.size() / scale).scaled(part.size())));
        }
    }
    return least;
}

bool Sharpness::isDrawnInPixels(const QImage &picture, const QImage &usual, double scale)
{
    constexpr double mostOfIt = 0.77;
    constexpr double nextToNothing = 1;
    return steepness(picture) > mostOfIt * steepness(usual) && lossInPoints(picture, scale) > nextToNothing;
}

double Sharpness::differenceTo(const QImage &drawing, const QImage &picture)
{
    QImage opaque(drawing.size(), QImage::Format_RGB32);
    opaque.fill(picture.pixel(0, 0));
    QPainter(&opaque).drawImage(0, 0, drawing);
    double least = 255;
    for (int top = 0; top <= picture.height() - opaque.height(); ++top) {
        for (int left = 0; left <= picture.width() - opaque.width(); ++left) {
            least = std::min(least, averageDifference(opaque, picture.copy(QRect(QPoint(left, top), opaque.size()))));
        }
    }
    return least;
}

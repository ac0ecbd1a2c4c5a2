#include "tests/session/support/MenuPicture.h"

#include <functional>

namespace
{

constexpr int frame = 8;       ///< Nothing but frames, theirs and those of what is highlighted, lies further out.
constexpr int minLetter = 5;   ///< A line of text is at least that high; a separator is not.
constexpr int markColumn = 24; ///< Check marks lie left of it, titles right of it.

bool isOneColour(const QImage &picture, const QRect &area)
{
    for (int y = area.top(); y <= area.bottom(); ++y) {
        for (int x = area.left(); x <= area.right(); ++x) {
            if (picture.pixel(x, y) != picture.pixel(area.topLeft())) {
                return false;
            }
        }
    }
    return true;
}

struct Run {
    int first;
    int count;
};

/// The runs of numbers from `begin` to before `end` that are not blank.
QList<Run> runs(int begin, int end, const std::function<bool(int)> &isBlank)
{
    QList<Run> found;
    int first = begin;
    for (int i = begin; i <= end; ++i) {
        if (i == end || isBlank(i)) {
            if (i > first) {
                found.append({first, i - first});
            }
            first = i + 1;
        }
    }
    return found;
}

} // namespace

QList<QRect> MenuPicture::entries(const QImage &menu)
{
    const int width = menu.width() - 2 * frame;
    QList<QRect> entries;
    for (const Run &run : runs(0, menu.height(), [&](int y) { return isOneColour(menu, {frame, y, width, 1}); })) {
        if (run.count >= minLetter) {
            entries.append({0, run.first, menu.width(), run.count});
        }
    }
    return entries;
}

QList<int> MenuPicture::marked(const QImage &menu)
{
    const QList<QRect> all = entries(menu);
    QList<int> numbers;
    for (int i = 0; i < all.size(); ++i) {
        const int middle = all.at(i).center().y();
        if (!isOneColour(menu, {frame, middle, markColumn - frame, 1})) {
            numbers.append(i);
        }
    }
    return numbers;
}

QList<QRect> MenuPicture::buttons(const QImage &panel)
{
    constexpr int margin = 20;
    constexpr int strip = 16; // Within the height of a button.
    const int top = panel.height() - margin - strip;
    QList<QRect> buttons;
    for (const Run &run : runs(0, panel.width(), [&](int x) { return isOneColour(panel, {x, top, 1, strip}); })) {
        if (run.count >= 2 * margin) {
            buttons.append({run.first, top, run.count, strip});
        }
    }
    return buttons;
}

#include "platform/linux/screen/ColourCells.h"

#include "platform/linux/include/XConnection.h"

#include <QList>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

namespace
{

constexpr int cells = 256;

/// To one of four levels.
int roughly(int level)
{
    return (level + 42) / 85 * 85;
}

QRgb roughly(QRgb colour)
{
    return qRgb(roughly(qRed(colour)), roughly(qGreen(colour)), roughly(qBlue(colour)));
}

/// The protocol's levels have 16 bits.
std::uint16_t wide(int level)
{
    return static_cast<std::uint16_t>(level * 0x101);
}

int difference(QRgb one, QRgb another)
{
    const int red = qRed(one) - qRed(another);
    const int green = qGreen(one) - qGreen(another);
    const int blue = qBlue(one) - qBlue(another);
    return red * red + green * green + blue * blue;
}

} // namespace

ColourCells::ColourCells(xcb_colormap_t colormap)
    : m_colormap(colormap)
{
}

QList<QRgb> ColourCells::colours() const
{
    std::vector<std::uint32_t> pixels(cells);
    std::iota(pixels.begin(), pixels.end(), 0U);
    xcb_connection_t *x = XConnection::get();
    const auto cookie = xcb_query_colors(x, m_colormap, cells, pixels.data());
    const XcbReply<xcb_query_colors_reply_t> reply(xcb_query_colors_reply(x, cookie, nullptr));
    QList<QRgb> found;
    for (int i = 0; reply && i < xcb_query_colors_colors_length(reply.get()); ++i) {
        const xcb_rgb_t &colour = xcb_query_colors_colors(reply.get())[i];
        found.append(qRgb(colour.red >> 8, colour.green >> 8, colour.blue >> 8));
    }
    return found;
}

QImage ColourCells::coloured(const QImage &pixels) const
{
    const QList<QRgb> table = colours();
    if (pixels.isNull() || table.isEmpty()) {
        return {};
    }
    QImage picture = pixels;
    picture.setColorTable(table);
    return picture.convertToFormat(QImage::Format_RGB32);
}

QImage ColourCells::pixelsOf(const QImage &picture)
{
    QList<QRgb> missing;
    QImage rough = picture.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < rough.height(); ++y) {
        auto *const line = reinterpret_cast<QRgb *>(rough.scanLine(y));
        for (int x = 0; x < rough.width(); ++x) {
            line[x] = roughly(line[x]);
            if (!m_cells.contains(line[x]) && !missing.contains(line[x])) {
                missing.append(line[x]);
            }
        }
    }
    if (!missing.isEmpty()) {
        allocate(missing);
    }
    QImage pixels(rough.size(), QImage::Format_Indexed8);
    for (int y = 0; y < rough.height(); ++y) {
        const auto *const line = reinterpret_cast<const QRgb *>(rough.constScanLine(y));
        std::transform(line, line + rough.width(), pixels.scanLine(y),
                       [this](QRgb colour) { return m_cells.value(colour); });
    }
    return pixels;
}

void ColourCells::allocate(const QList<QRgb> &colours)
{
    xcb_connection_t *x = XConnection::get();
    std::vector<xcb_alloc_color_cookie_t> cookies;
    for (const QRgb colour : colours) {
        cookies.push_back(
            xcb_alloc_color(x, m_colormap, wide(qRed(colour)), wide(qGreen(colour)), wide(qBlue(colour))));
    }
    QList<QRgb> ofOthers;
    for (qsizetype i = 0; i < colours.size(); ++i) {
        const QRgb colour = colours[i];
        const XcbReply<xcb_alloc_color_reply_t> cell(
            xcb_alloc_color_reply(x, cookies[static_cast<std::size_t>(i)], nullptr));
        if (cell) {
            m_cells.insert(colour, static_cast<uchar>(cell->pixel));
            continue;
        }
        ofOthers = ofOthers.isEmpty() ? this->colours() : ofOthers;
        const auto nearest =
            std::ranges::min_element(ofOthers, {}, [colour](QRgb one) { return difference(one, colour); });
        m_cells.insert(colour, static_cast<uchar>(nearest - ofOthers.begin()));
    }
}

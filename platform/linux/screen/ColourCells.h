#pragma once

#include <QHash>
#include <QImage>

#include <xcb/xcb.h>

/// The colours of a visual whose pixels stand for cells of a colormap, as on a screen of 256 colours. A picture gets
/// the nearest of 64 colours, so that it can be recognised and leaves cells for others; where none is to be had any
/// more, the nearest of those that others have. Needs X; main thread only.
class ColourCells final
{
public:
    explicit ColourCells(xcb_colormap_t colormap);

    /// What such pixels (Format_Indexed8) look like, as Format_RGB32; null when there are none, or for a map that is
    /// gone.
    [[nodiscard]] QImage coloured(const QImage &pixels) const;

    /// The pixels of an opaque picture, as Format_Indexed8. The cells are kept until the connection ends.
    [[nodiscard]] QImage pixelsOf(const QImage &picture);

private:
    void allocate(const QList<QRgb> &colours);
    [[nodiscard]] QList<QRgb> colours() const;

    xcb_colormap_t m_colormap;
    QHash<QRgb, uchar> m_cells;
};

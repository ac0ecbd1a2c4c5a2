#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>

/// The pages of a TIFF file (TIFF 6.0) in their order; empty when one of them is malformed or of another kind.
///
/// Only the kind that the program's own images are of: 8 bits each of red, green, blue and alpha, in strips, with
/// PackBits compression or none, the first row at the top. At most 16 pages of 1024 x 1024. Qt's plugin would read all
/// kinds, but with the libraries that it brings it costs each session 750 kB of private memory. Reentrant.
[[nodiscard]] QList<QImage> readTiff(const QByteArray &bytes);

#pragma once

#include <QByteArray>
#include <QImage>

/// The picture in an .icns file that suits a square of `side` pixels: the smallest that is not smaller, else the
/// largest. It is not scaled. Null when the file is malformed or holds no such picture.
///
/// Only the pictures that such files hold as PNG are looked at, of at most 1024 x 1024 pixels, and only the chosen one
/// is decoded. Qt would read the file by a plugin that each session pays for with private memory. Reentrant.
[[nodiscard]] QImage readIcns(const QByteArray &file, int side);

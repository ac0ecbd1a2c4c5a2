#include "platform/images/IcnsReader.h"

#include "platform/images/ImageLimits.h"

#include <QBuffer>
#include <QImageReader>
#include <QtEndian>

#include <map>

namespace
{

constexpr qsizetype headerSize = 8; ///< Of the file and of every entry: a type and the length, itself included.

std::uint32_t u32(const QByteArray &bytes, qsizetype at)
{
    return qFromBigEndian<std::uint32_t>(bytes.constData() + at);
}

/// The side of a square PNG picture, from its header; 0 for anything else.
int pngSide(const QByteArray &picture)
{
    // The signature, then the first chunk: length, "IHDR", width, height.
    constexpr qsizetype widthAt = 16;
    constexpr qsizetype heightAt = 20;
    if (picture.size() < heightAt + 4 || !picture.startsWith("\x89PNG\r\n\x1a\n") || picture.mid(12, 4) != "IHDR") {
        return 0;
    }
    const std::uint32_t width = u32(picture, widthAt);
    const bool isUsable = width == u32(picture, heightAt) && width <= maxImageSide;
    return isUsable ? static_cast<int>(width) : 0;
}

} // namespace

QImage readIcns(const QByteArray &file, int side)
{
    if (file.size() < headerSize || !file.startsWith("icns") ||
        u32(file, 4) > static_cast<std::uint64_t>(file.size())) {
        return {};
    }
    std::map<int, QByteArray> pictures; // By side.
    for (qsizetype at = headerSize; file.size() - at >= headerSize;) {
        const qsizetype length = u32(file, at + 4);
        if (length < headerSize || length > file.size() - at) {
            return {};
        }
        const QByteArray picture = file.mid(at + headerSize, length - headerSize);
        if (const int pictureSide = pngSide(picture); pictureSide > 0) {
            pictures.try_emplace(pictureSide, picture);
        }
        at += length;
    }
    if (pictures.empty()) {
        return {};
    }
    const auto enough = pictures.lower_bound(side);
    QByteArray chosen = enough != pictures.end() ? enough->second : pictures.rbegin()->second;
    QBuffer buffer(&chosen);
    QImageReader reader(&buffer, "png");
    reader.setAutoDetectImageFormat(false); // Or Qt would load all plugins for pictures first.
    return reader.read();
}

#include "platform/images/TiffReader.h"

#include "platform/images/ImageLimits.h"

#include <QtEndian>

#include <algorithm>
#include <cstring>
#include <exception>
#include <map>
#include <vector>

namespace
{

constexpr int maxPages = 16;

enum Tag : std::uint16_t {
    ImageWidth = 256,
    ImageLength = 257,
    BitsPerSample = 258,
    Compression = 259,
    PhotometricInterpretation = 262,
    StripOffsets = 273,
    Orientation = 274,
    SamplesPerPixel = 277,
    RowsPerStrip = 278,
    StripByteCounts = 279,
    PlanarConfiguration = 284,
    Predictor = 317,
    ExtraSamples = 338,
};

constexpr std::uint32_t noCompression = 1;
constexpr std::uint32_t packBits = 32773;
constexpr std::uint32_t associatedAlpha = 1;

/// What is thrown, and caught in readTiff, for any file that is not read.
struct Unreadable final : std::exception {
};

void require(bool condition)
{
    if (!condition) {
        throw Unreadable();
    }
}

/// The file's bytes and the order in which it has numbers. Every access is checked.
class Bytes final
{
public:
    explicit Bytes(const QByteArray &bytes)
        : m_bytes(bytes)
        , m_bigEndian(bytes.startsWith("MM"))
    {
        require(m_bigEndian || bytes.startsWith("II"));
        require(u16(2) == 42);
    }

    [[nodiscard]] std::uint16_t u16(std::uint64_t at) const
    {
        const char *from = range(at, 2);
        return m_bigEndian ? qFromBigEndian<std::uint16_t>(from) : qFromLittleEndian<std::uint16_t>(from);
    }

    [[nodiscard]] std::uint32_t u32(std::uint64_t at) const
    {
        const char *from = range(at, 4);
        return m_bigEndian ? qFromBigEndian<std::uint32_t>(from) : qFromLittleEndian<std::uint32_t>(from);
    }

    [[nodiscard]] const char *range(std::uint64_t at, std::uint64_t size) const
    {
        const auto length = static_cast<std::uint64_t>(m_bytes.size());
        require(at <= length && size <= length - at);
        return m_bytes.constData() + at;
    }

private:
    const QByteArray &m_bytes;
    const bool m_bigEndian;
};

/// One image file directory: the numbers under each tag that holds 16-bit or 32-bit numbers.
class Directory final
{
public:
    Directory(const Bytes &bytes, std::uint32_t at)
    {
        constexpr std::uint64_t entrySize = 12;
        const std::uint16_t count = bytes.u16(at);
        for (std::uint16_t i = 0; i < count; ++i) {
            readEntry(bytes, at + 2ULL + i * entrySize);
        }
        next = bytes.u32(at + 2ULL + count * entrySize);
    }

    [[nodiscard]] const std::vector<std::uint32_t> &all(Tag tag) const
    {
        const auto found = m_values.find(tag);
        require(found != m_values.end());
        return found->second;
    }

    [[nodiscard]] std::uint32_t one(Tag tag) const
    {
        require(all(tag).size() == 1);
        return all(tag)[0];
    }

    [[nodiscard]] std::uint32_t oneOr(Tag tag, std::uint32_t absent) const
    {
        return m_values.contains(tag) ? one(tag) : absent;
    }

    std::uint32_t next = 0; ///< Where the next page's directory is; 0 at the last.

private:
    void readEntry(const Bytes &bytes, std::uint64_t at)
    {
        constexpr std::uint16_t shortType = 3;
        constexpr std::uint16_t longType = 4;
        const std::uint16_t type = bytes.u16(at + 2);
        if (type != shortType && type != longType) {
            return;
        }
        const std::uint32_t count = bytes.u32(at + 4);
        require(count <= maxImageSide); // A strip for each row at the most.
        const std::uint32_t size = type == shortType ? 2 : 4;
        const std::uint64_t values = count * size <= 4 ? at + 8 : bytes.u32(at + 8);
        std::vector<std::uint32_t> &numbers = m_values[bytes.u16(at)];
        numbers.clear();
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint64_t place = values + std::uint64_t(i) * size;
            numbers.push_back(type == shortType ? bytes.u16(place) : bytes.u32(place));
        }
    }

    std::map<std::uint16_t, std::vector<std::uint32_t>> m_values;
};

/// Undoes PackBits (TIFF 6.0, section 9): a count byte n, then n + 1 bytes as they are or one byte 1 - n times.
void unpack(const char *from, std::uint32_t size, char *to, std::uint64_t wanted)
{
    const char *const end = from + size;
    while (wanted > 0) {
        require(from < end);
        const int count = static_cast<signed char>(*from++); // NOLINT(bugprone-signed-char-misuse): it is a number
        if (count == -128) {
            continue;
        }
        const std::uint64_t length = count >= 0 ? count + 1 : 1 - count;
        require(length <= wanted && end - from >= (count >= 0 ? count + 1 : 1));
        if (count >= 0) {
            std::memcpy(to, from, length);
            from += length;
        } else {
            std::memset(to, *from++, length);
        }
        to += length;
        wanted -= length;
    }
}

QImage readPage(const Bytes &bytes, const Directory &page)
{
    require(page.all(BitsPerSample) == std::vector<std::uint32_t>(4, 8));
    require(page.one(SamplesPerPixel) == 4 && page.oneOr(PlanarConfiguration, 1) == 1);
    require(page.one(PhotometricInterpretation) == 2 && page.oneOr(Predictor, 1) == 1);
    require(page.oneOr(Orientation, 1) == 1);
    const std::uint32_t compression = page.oneOr(Compression, noCompression);
    require(compression == noCompression || compression == packBits);

    const std::uint32_t width = page.one(ImageWidth);
    const std::uint32_t height = page.one(ImageLength);
    require(width >= 1 && width <= maxImageSide && height >= 1 && height <= maxImageSide);
    const std::uint32_t rowsPerStrip = std::min(page.oneOr(RowsPerStrip, height), height);
    require(rowsPerStrip >= 1);
    const std::vector<std::uint32_t> &offsets = page.all(StripOffsets);
    const std::vector<std::uint32_t> &sizes = page.all(StripByteCounts);
    require(offsets.size() == (height + rowsPerStrip - 1) / rowsPerStrip && sizes.size() == offsets.size());

    const bool premultiplied = page.oneOr(ExtraSamples, 0) == associatedAlpha;
    // Rows of four bytes a pixel have no padding, so that a strip is one run of bytes.
    QImage image(static_cast<int>(width), static_cast<int>(height),
                 premultiplied ? QImage::Format_RGBA8888_Premultiplied : QImage::Format_RGBA8888);
    require(!image.isNull());
    for (std::size_t strip = 0; strip < offsets.size(); ++strip) {
        const auto row = static_cast<std::uint32_t>(strip * rowsPerStrip);
        const std::uint64_t wanted = std::uint64_t(std::min(rowsPerStrip, height - row)) * width * 4;
        const char *from = bytes.range(offsets[strip], sizes[strip]);
        char *to = reinterpret_cast<char *>(image.scanLine(static_cast<int>(row)));
        if (compression == packBits) {
            unpack(from, sizes[strip], to, wanted);
        } else {
            require(sizes[strip] >= wanted);
            std::memcpy(to, from, wanted);
        }
    }
    return image;
}

} // namespace

QList<QImage> readTiff(const QByteArray &file)
{
    try {
        const Bytes bytes(file);
        QList<QImage> pages;
        for (std::uint32_t at = bytes.u32(4); at != 0;) {
            require(pages.size() < maxPages);
            const Directory directory(bytes, at);
            pages.append(readPage(bytes, directory));
            at = directory.next;
        }
        return pages;
    } catch (const Unreadable &) {
        return {};
    }
}

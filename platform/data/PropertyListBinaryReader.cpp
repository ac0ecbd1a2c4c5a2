#include "platform/data/PropertyListBinaryReader.h"

#include "platform/data/PropertyListValues.h"

#include <QHash>
#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <optional>

namespace PropertyListBinaryReader
{

namespace
{

constexpr QByteArrayView magic = "bplist00";
constexpr qsizetype trailerSize = 32;
constexpr double secondsFrom1970To2001 = 978307200;

/// The next `count` bytes, which are taken off `rest`; nothing when there are fewer.
std::optional<QByteArrayView> take(QByteArrayView &rest, std::uint64_t count)
{
    if (count > static_cast<std::uint64_t>(rest.size())) {
        return std::nullopt;
    }
    const QByteArrayView taken = rest.first(static_cast<qsizetype>(count));
    rest = rest.sliced(taken.size());
    return taken;
}

/// The number in up to eight bytes.
std::uint64_t bigEndian(QByteArrayView bytes)
{
    std::uint64_t number = 0;
    for (const char byte : bytes) {
        number = number << 8 | static_cast<unsigned char>(byte);
    }
    return number;
}

QVariant integer(QByteArrayView bytes)
{
    if (bytes.size() < 8) {
        return PropertyListValues::integer(bigEndian(bytes));
    }
    const std::uint64_t low = bigEndian(bytes.last(8));
    // Eight bytes hold a signed number. Sixteen are what an unsigned one takes that does not fit there.
    const std::uint64_t signOfLow = low >> 63 ? ~std::uint64_t(0) : 0;
    const std::uint64_t high = bytes.size() == 16 ? bigEndian(bytes.first(8)) : signOfLow;
    if (high == 0) {
        return PropertyListValues::integer(low);
    }
    return high == signOfLow ? QVariant(static_cast<qlonglong>(low)) : QVariant();
}

double real(QByteArrayView bytes)
{
    const std::uint64_t bits = bigEndian(bytes);
    return bytes.size() == 4 ? std::bit_cast<float>(static_cast<std::uint32_t>(bits)) : std::bit_cast<double>(bits);
}

QVariant date(QByteArrayView bytes)
{
    const double seconds = real(bytes);
    return std::isnan(seconds) ? QVariant() : QVariant(PropertyListValues::date(seconds + secondsFrom1970To2001));
}

QVariant asciiString(QByteArrayView bytes)
{
    const bool ascii = std::none_of(bytes.begin(), bytes.end(), [](char c) { return c & 0x80; });
    return ascii ? QVariant(QString::fromLatin1(bytes)) : QVariant();
}

QString utf16String(QByteArrayView bytes)
{
    QString text(bytes.size() / 2, Qt::Uninitialized);
    qFromBigEndian<char16_t>(bytes.data(), text.size(), text.data());
    return text;
}

/// One pass over one list.
class Reader final
{
public:
    explicit Reader(const QByteArray &bytes)
        : m_bytes(bytes)
    {
    }

    QVariant list();

private:
    struct Object {
        QVariant value;          ///< Invalid while the object is being read.
        std::int64_t values = 1; ///< How many values it is when what it shares is expanded.
        int levels = 0;
    };

    std::optional<Object> object(std::uint64_t index, int level);
    std::optional<Object> parsed(QByteArrayView bytes, int level);
    std::optional<Object> collection(QByteArrayView references, int level);
    std::optional<Object> dictionary(QByteArrayView references, int level);
    static std::optional<std::uint64_t> takeCount(QByteArrayView &rest, unsigned inMarker);

    QByteArrayView m_bytes;
    QByteArrayView m_objects; ///< Up to the offset table, so that offsets count from its start.
    QByteArrayView m_offsets;
    int m_offsetSize = 0;
    int m_referenceSize = 0;
    std::uint64_t m_objectCount = 0;
    std::int64_t m_keyCharacters = 0;
    std::int64_t m_leafBytes = 0; ///< What has been copied out of m_objects.
    QHash<std::uint64_t, Object> m_known;
};

QVariant Reader::list()
{
    if (m_bytes.size() < magic.size() + trailerSize) {
        return {};
    }
    const QByteArrayView trailer = m_bytes.last(trailerSize);
    m_offsetSize = static_cast<unsigned char>(trailer[6]);
    m_referenceSize = static_cast<unsigned char>(trailer[7]);
    m_objectCount = bigEndian(trailer.sliced(8, 8));
    const std::uint64_t top = bigEndian(trailer.sliced(16, 8));
    const std::uint64_t tableStart = bigEndian(trailer.sliced(24, 8));

    QByteArrayView rest = m_bytes.chopped(trailerSize);
    const bool sizesFit = m_offsetSize >= 1 && m_offsetSize <= 8 && m_referenceSize >= 1 && m_referenceSize <= 8 &&
                          m_objectCount <= static_cast<std::uint64_t>(rest.size());
    const std::optional<QByteArrayView> objects = take(rest, tableStart);
    const std::optional<QByteArrayView> offsets =
        sizesFit ? take(rest, m_objectCount * static_cast<unsigned>(m_offsetSize)) : std::nullopt;
    if (!objects || !offsets) {
        return {};
    }
    m_objects = *objects;
    m_offsets = *offsets;
    const std::optional<Object> found = object(top, 0);
    return found ? found->value : QVariant();
}

// Every object is parsed once, however often it is referred to: a list of a few hundred bytes can expand to more values
// than there is time for.
std::optional<Reader::Object> Reader::object(std::uint64_t index, int level)
{
    if (index >= m_objectCount) {
        return std::nullopt;
    }
    if (const auto known = m_known.constFind(index); known != m_known.cend()) {
        const bool usable = known->value.isValid() && level + known->levels <= PropertyListValues::maxLevels;
        return usable ? std::optional(*known) : std::nullopt;
    }
    const qsizetype entry = static_cast<qsizetype>(index) * m_offsetSize;
    const std::uint64_t offset = bigEndian(m_offsets.sliced(entry, m_offsetSize));
    if (offset < static_cast<std::uint64_t>(magic.size()) || offset >= static_cast<std::uint64_t>(m_objects.size())) {
        return std::nullopt;
    }
    m_known.insert(index, Object());
    std::optional<Object> read = parsed(m_objects.sliced(static_cast<qsizetype>(offset)), level);
    if (!read || !read->value.isValid() || read->values > PropertyListValues::maxValues) {
        return std::nullopt;
    }
    m_known.insert(index, *read);
    return read;
}

/// The object at the start of `bytes`. It may still have an invalid value, which makes it malformed.
std::optional<Reader::Object> Reader::parsed(QByteArrayView bytes, int level)
{
    const auto marker = static_cast<unsigned char>(bytes.front());
    const unsigned low = marker & 0x0F;
    QByteArrayView rest = bytes.sliced(1);
    const auto leaf = [this, &rest](std::uint64_t size, auto convert) -> std::optional<Object> {
        const std::optional<QByteArrayView> content = take(rest, size);
        // Any number of objects may lie at the same place, and each would become a copy.
        m_leafBytes += content ? content->size() : 0;
        return content && m_leafBytes <= m_objects.size() ? std::optional(Object{convert(*content)}) : std::nullopt;
    };
    switch (marker) {
    case 0x08:
        return Object{false};
    case 0x09:
        return Object{true};
    case 0x10:
    case 0x11:
    case 0x12:
    case 0x13:
    case 0x14:
        return leaf(std::uint64_t(1) << low, integer);
    case 0x22:
    case 0x23:
        return leaf(std::uint64_t(1) << low, [](QByteArrayView content) { return QVariant(real(content)); });
    case 0x33:
        return leaf(8, date);
    default:
        break;
    }

    // No count exceeds that of the bytes, so that no product below can overflow.
    const std::optional<std::uint64_t> count = takeCount(rest, low);
    if (!count || *count > static_cast<std::uint64_t>(rest.size())) {
        return std::nullopt;
    }
    const std::uint64_t referencesSize = *count * static_cast<unsigned>(m_referenceSize);
    switch (marker >> 4) {
    case 0x4:
        return leaf(*count, [](QByteArrayView content) { return QVariant(content.toByteArray()); });
    case 0x5:
        return leaf(*count, asciiString);
    case 0x6:
        return leaf(*count * 2, [](QByteArrayView content) { return QVariant(utf16String(content)); });
    case 0xA: // Array.
    case 0xB: // Ordered set.
    case 0xC: // Set.
        if (const std::optional<QByteArrayView> references = take(rest, referencesSize)) {
            return collection(*references, level + 1);
        }
        return std::nullopt;
    case 0xD:
        if (const std::optional<QByteArrayView> references = take(rest, referencesSize * 2)) {
            return dictionary(*references, level + 1);
        }
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

/// The count that a marker states, either itself or in an integer object that follows it.
std::optional<std::uint64_t> Reader::takeCount(QByteArrayView &rest, unsigned inMarker)
{
    if (inMarker < 0x0F) {
        return inMarker;
    }
    const std::optional<QByteArrayView> marker = take(rest, 1);
    const unsigned kind = marker ? static_cast<unsigned char>(marker->front()) : 0;
    if (kind < 0x10 || kind > 0x13) {
        return std::nullopt;
    }
    const std::optional<QByteArrayView> number = take(rest, std::uint64_t(1) << (kind & 0x0F));
    return number ? std::optional(bigEndian(*number)) : std::nullopt;
}

std::optional<Reader::Object> Reader::collection(QByteArrayView references, int level)
{
    if (level > PropertyListValues::maxLevels) {
        return std::nullopt;
    }
    QVariantList list;
    Object result{QVariant(), 1, 1};
    while (const std::optional<QByteArrayView> reference = take(references, m_referenceSize)) {
        const std::optional<Object> element = object(bigEndian(*reference), level);
        if (!element) {
            return std::nullopt;
        }
        result.values += element->values;
        result.levels = std::max(result.levels, element->levels + 1);
        if (result.values > PropertyListValues::maxValues) {
            return std::nullopt;
        }
        list.append(element->value);
    }
    result.value = list;
    return result;
}

std::optional<Reader::Object> Reader::dictionary(QByteArrayView references, int level)
{
    const QByteArrayView keys = references.first(references.size() / 2);
    std::optional<Object> values = collection(references.last(keys.size()), level);
    if (!values) {
        return std::nullopt;
    }
    QVariantMap map;
    QByteArrayView rest = keys;
    for (const QVariant &value : values->value.toList()) {
        const std::optional<Object> key = object(bigEndian(*take(rest, m_referenceSize)), level);
        if (!key || key->value.typeId() != QMetaType::QString) {
            return std::nullopt;
        }
        const QString name = key->value.toString();
        // Many dictionaries may share few huge keys that differ only at their ends; comparing them would take hours.
        m_keyCharacters += name.size();
        if (m_keyCharacters > PropertyListValues::maxBytes) {
            return std::nullopt;
        }
        map.insert(name, value);
    }
    values->value = map;
    return values;
}

} // namespace

bool recognises(const QByteArray &bytes)
{
    return bytes.startsWith(magic);
}

QVariant read(const QByteArray &bytes)
{
    return Reader(bytes).list();
}

} // namespace PropertyListBinaryReader

#include "tests/platform/data/PropertyListSamples.h"

#include "platform/data/UtcTime.h"

#include <QDateTime>
#include <QJsonObject>
#include <QtEndian>

#include <array>
#include <bit>
#include <cmath>
#include <limits>

namespace
{

template <typename Number>
QByteArray bigEndian(Number number)
{
    QByteArray bytes(sizeof number, Qt::Uninitialized);
    qToBigEndian(number, bytes.data());
    return bytes;
}

constexpr qlonglong smallest = std::numeric_limits<qlonglong>::min();
constexpr qlonglong largest = std::numeric_limits<qlonglong>::max();

constexpr std::array<qlonglong, 17> signedEdges{0,          1,           -1,      127,      128,         255,
                                                256,        -128,        65535,   65536,    2147483647,  2147483648LL,
                                                4294967295, -2147483648, largest, smallest, smallest + 1};
constexpr std::array<qulonglong, 3> unsignedEdges{qulonglong(largest) + 1, qulonglong(largest) + 12345,
                                                  std::numeric_limits<qulonglong>::max()};

constexpr std::array<double, 14> realEdges{0.0,
                                           -0.0,
                                           1,
                                           0.1,
                                           -2.5,
                                           320,
                                           1e100,
                                           1.0 / 3,
                                           std::numeric_limits<double>::max(),
                                           std::numeric_limits<double>::lowest(),
                                           std::numeric_limits<double>::denorm_min(),
                                           std::numeric_limits<double>::infinity(),
                                           -std::numeric_limits<double>::infinity(),
                                           9007199254740993.0};

// Seconds since 1970: the years 1, 1582, 1899 and 1969, the ends of 32 bits, 2100, 4001 and the last second of 9999.
constexpr std::array<qint64, 11> dateEdges{-62135596800, -12219292801, -2208988801, -1,          0,           978307200,
                                           2147483647,   2147483648,   4102444800,  64092211200, 253402300799};

constexpr std::array<const char16_t *, 12> texts{u"",
                                                 u"0",
                                                 u"-12.5e3",
                                                 u"YES",
                                                 u"<b>Tom & \"Jerry\"</b> ]]> &amp; &#65; <!-- x -->",
                                                 u"  leading and trailing  ",
                                                 u"\n\ttabs\nand lines\n",
                                                 u"Gr\u00FC\u00DFe aus K\u00F6ln",
                                                 u"\u4F60\u597D, \u043C\u0438\u0440, \u05E9\u05DC\u05D5\u05DD",
                                                 u"\U0001F600 \U0001F468\u200D\U0001F469\u200D\U0001F467 \U0010FFFD",
                                                 u"\uFEFF\u0085\u2028\uFFFD\uE000\u007F",
                                                 u"e\u0301b"};

} // namespace

unsigned PropertyListSamples::below(unsigned bound)
{
    return static_cast<unsigned>(m_random() % bound);
}

QVariant PropertyListSamples::next()
{
    QVariant sample;
    while (sample.typeId() != QMetaType::QVariantList && sample.typeId() != QMetaType::QVariantMap) {
        sample = value(5);
    }
    return sample;
}

QString PropertyListSamples::text()
{
    QString text = QStringView(texts[below(texts.size())]).toString();
    for (unsigned i = below(12); i > 0; --i) {
        static constexpr std::array<char32_t, 5> ends{0x80, 0x250, 0xD800, 0xFFFE, 0x10FFFE};
        char32_t c = below(ends[below(ends.size())]);
        if (c < 0x20 && c != '\t' && c != '\n' && m_text != Text::WithControls) {
            c = c == '\r' && m_text == Text::WithReturns ? c : U' ';
        }
        if (c < 0xD800 || (c > 0xDFFF && c != 0xFFFE && c != 0xFFFF)) {
            text += QString::fromUcs4(&c, 1);
        }
    }
    if (m_text != Text::Plain && below(4) == 0) {
        text += u"\r\n-\r-\n\r";
    }
    return text;
}

QVariant PropertyListSamples::value(int levels)
{
    switch (below(levels > 0 ? 11 : 8)) {
    case 0:
        return below(2) == 1;
    case 1:
        return signedEdges[below(signedEdges.size())];
    case 2:
        return below(2) ? QVariant(unsignedEdges[below(unsignedEdges.size())])
                        : QVariant(static_cast<qlonglong>(m_random()));
    case 3:
        return realEdges[below(realEdges.size())];
    case 4: {
        const auto random = std::bit_cast<double>(quint64(m_random()));
        return std::isnan(random) ? 0.5 : random;
    }
    case 5: {
        const bool edge = below(2);
        const qint64 seconds =
            edge ? dateEdges[below(dateEdges.size())]
                 : dateEdges.front() + qint64(m_random() % quint64(dateEdges.back() - dateEdges.front()));
        return QDateTime::fromSecsSinceEpoch(seconds, inUtc);
    }
    case 6: {
        QByteArray data(below(200), '\0');
        std::generate(data.begin(), data.end(), [this] { return static_cast<char>(below(256)); });
        return data;
    }
    case 7:
        return text();
    case 8: {
        QVariantList list;
        for (unsigned i = below(20); i > 0; --i) {
            list.append(value(levels - 1));
        }
        return list;
    }
    default: {
        QVariantMap map;
        for (unsigned i = below(8); i > 0; --i) {
            map.insert(text(), value(levels - 1));
        }
        return map;
    }
    }
}

QJsonArray tagged(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
        return {QStringLiteral("bool"), value.toBool()};
    case QMetaType::LongLong:
        return {QStringLiteral("integer"), QString::number(value.toLongLong())};
    case QMetaType::ULongLong:
        // Only for what does not fit into the signed type.
        return value.toULongLong() <= qulonglong(largest)
                   ? QJsonArray()
                   : QJsonArray{QStringLiteral("integer"), QString::number(value.toULongLong())};
    case QMetaType::Double:
        return {QStringLiteral("real"),
                QString::fromLatin1(bigEndian(std::bit_cast<quint64>(value.toDouble())).toHex())};
    case QMetaType::QDateTime:
        return value.toDateTime().timeSpec() != Qt::UTC
                   ? QJsonArray()
                   : QJsonArray{QStringLiteral("date"), value.toDateTime().toSecsSinceEpoch()};
    case QMetaType::QByteArray:
        return {QStringLiteral("data"), QString::fromLatin1(value.toByteArray().toHex())};
    case QMetaType::QString:
        return value.toString().isNull() ? QJsonArray() : QJsonArray{QStringLiteral("string"), value.toString()};
    case QMetaType::QVariantList: {
        QJsonArray elements;
        for (const QVariant &element : value.toList()) {
            elements.append(tagged(element));
        }
        return {QStringLiteral("array"), elements};
    }
    case QMetaType::QVariantMap: {
        QJsonObject entries;
        const QVariantMap map = value.toMap();
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            entries.insert(it.key(), tagged(it.value()));
        }
        return {QStringLiteral("dict"), entries};
    }
    default:
        return {};
    }
}

QByteArray binaryTrailer(int offsetSize, int referenceSize, quint64 objects, quint64 top, quint64 table)
{
    return QByteArray(6, '\0') + static_cast<char>(offsetSize) + static_cast<char>(referenceSize) + bigEndian(objects) +
           bigEndian(top) + bigEndian(table);
}

QByteArray binaryList(const QList<QByteArray> &objects)
{
    QByteArray list = "bplist00";
    QByteArray offsets;
    for (const QByteArray &object : objects) {
        offsets += bigEndian(static_cast<quint16>(list.size()));
        list += object;
    }
    const auto table = static_cast<quint64>(list.size());
    return list + offsets + binaryTrailer(2, 1, static_cast<quint64>(objects.size()), 0, table);
}

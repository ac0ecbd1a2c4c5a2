#include "platform/data/StringValues.h"

#include "platform/data/DecimalNumber.h"

#include <QStringDecoder>

#include <algorithm>
#include <cmath>
#include <limits>

namespace StringValues
{

namespace
{

constexpr std::int32_t minInt = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t maxInt = std::numeric_limits<std::int32_t>::max();

QStringView withoutLeadingSpace(const QString &text)
{
    const QStringView view(text);
    const auto start = std::find_if_not(view.cbegin(), view.cend(), [](QChar c) { return c.isSpace(); });
    return view.sliced(start - view.cbegin());
}

enum class Sign { Plus, Minus };

Sign takeSign(QStringView &text)
{
    const Sign sign = text.startsWith(u'-') ? Sign::Minus : Sign::Plus;
    if (sign == Sign::Minus || text.startsWith(u'+')) {
        text = text.sliced(1);
    }
    return sign;
}

template <typename Integer>
std::int32_t saturated(Integer value)
{
    return static_cast<std::int32_t>(std::clamp<Integer>(value, minInt, maxInt));
}

} // namespace

std::int64_t longLongValue(const QString &text)
{
    QStringView rest = withoutLeadingSpace(text);
    const Sign sign = takeSign(rest);
    constexpr std::uint64_t max = std::numeric_limits<std::int64_t>::max();
    const std::uint64_t maxMagnitude = sign == Sign::Minus ? max + 1 : max;
    std::uint64_t magnitude = 0;
    for (const QChar c : rest) {
        if (c < u'0' || c > u'9') {
            break;
        }
        const unsigned digit = c.unicode() - u'0';
        magnitude = magnitude > (maxMagnitude - digit) / 10 ? maxMagnitude : magnitude * 10 + digit;
    }
    return static_cast<std::int64_t>(sign == Sign::Minus ? 0 - magnitude : magnitude);
}

std::int32_t intValue(const QString &text)
{
    return saturated(longLongValue(text));
}

float floatValue(const QString &text)
{
    const QStringView number = withoutLeadingSpace(text);
    return static_cast<float>(DecimalNumber::value(number.first(DecimalNumber::length(number))));
}

bool boolValue(const QString &text)
{
    QStringView rest = withoutLeadingSpace(text);
    takeSign(rest);
    while (rest.startsWith(u'0')) {
        rest = rest.sliced(1);
    }
    return !rest.isEmpty() && QStringView(u"YyTt123456789").contains(rest.front());
}

std::int32_t intValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return intValue(value.toString());
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::LongLong:
        return saturated(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return static_cast<std::int32_t>(std::min<qulonglong>(value.toULongLong(), maxInt));
    case QMetaType::Float:
    case QMetaType::Double: {
        const double number = value.toDouble();
        return std::isnan(number) ? 0 : saturated(number);
    }
    default:
        return 0;
    }
}

float floatValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return floatValue(value.toString());
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::LongLong:
        return static_cast<float>(value.toLongLong());
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return static_cast<float>(value.toULongLong());
    case QMetaType::Float:
    case QMetaType::Double:
        return static_cast<float>(value.toDouble());
    default:
        return 0;
    }
}

bool boolValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return boolValue(value.toString());
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return value.toULongLong() != 0;
    case QMetaType::Float:
    case QMetaType::Double:
        return value.toDouble() != 0;
    default:
        return false;
    }
}

QString stringValue(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
        return value.toString();
    default:
        return {};
    }
}

QString fromUtf8(QByteArrayView bytes)
{
    using Flag = QStringConverter::Flag;
    QStringDecoder decoder(QStringConverter::Utf8, Flag::Stateless | Flag::ConvertInitialBom);
    QString text = decoder.decode(bytes);
    if (decoder.hasError()) {
        return {};
    }
    return text.isNull() ? QStringLiteral("") : text;
}

} // namespace StringValues

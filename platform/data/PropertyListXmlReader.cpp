#include "platform/data/PropertyListXmlReader.h"

#include "platform/data/CrowdedTag.h"
#include "platform/data/DecimalNumber.h"
#include "platform/data/DocumentType.h"
#include "platform/data/PropertyListValues.h"

#include <QRegularExpression>
#include <QStringConverter>
#include <QXmlStreamReader>

#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace PropertyListXmlReader
{

namespace
{

/// The characters of `bytes`; a null string when they are wrongly encoded.
QString decoded(const QByteArray &bytes)
{
    QStringDecoder decoder(QStringConverter::encodingForData(bytes, u'<').value_or(QStringConverter::Utf8));
    QString text = decoder(bytes);
    return decoder.hasError() || !text.isValidUtf16() ? QString() : text;
}

/// `type` ends with its first '>'.
bool isPlainDocumentType(QStringView type)
{
    const QStringView start = u"<!DOCTYPE";
    const QStringView name = u"plist";
    if (!type.startsWith(start) || !type.endsWith(u'>')) {
        return false;
    }
    const QStringView behind = type.sliced(start.size()).chopped(1);
    const QStringView words = behind.trimmed();
    return behind.size() > words.size() && behind.front().isSpace() && words.startsWith(name) &&
           (words.size() == name.size() || words[name.size()].isSpace()) && !words.contains(u'[') &&
           !words.contains(u'<');
}

// QXmlStreamReader expands the entities that an internal subset declares, and declarations that refer to one another
// exhaust its stack.
bool hasOnlyPlainDocumentType(QStringView text)
{
    const QStringView type = text.sliced(lengthBeforeDocumentType(text));
    if (type.isEmpty()) {
        return true;
    }
    const qsizetype length = type.indexOf(u'>') + 1;
    const QStringView rest = type.sliced(length);
    return isPlainDocumentType(type.first(length)) && lengthBeforeDocumentType(rest) == rest.size();
}

/// [white space] [sign] digits, or hexadecimal digits behind 0x [white space]; from -2^63 to 2^64-1.
QVariant integer(QStringView text)
{
    text = text.trimmed();
    const bool negative = text.startsWith(u'-');
    if (negative || text.startsWith(u'+')) {
        text = text.sliced(1);
    }
    const int base = text.startsWith(u"0x", Qt::CaseInsensitive) ? 16 : 10;
    const QByteArray digits = text.sliced(base == 16 ? 2 : 0).toLatin1();
    std::uint64_t magnitude = 0;
    const auto [end, error] = std::from_chars(digits.cbegin(), digits.cend(), magnitude, base);
    if (error != std::errc() || end != digits.cend()) {
        return {};
    }
    if (!negative) {
        return PropertyListValues::integer(magnitude);
    }
    constexpr std::uint64_t max = std::numeric_limits<std::int64_t>::max();
    return magnitude <= max + 1 ? QVariant(static_cast<qlonglong>(0 - magnitude)) : QVariant();
}

QVariant real(QStringView text)
{
    text = text.trimmed();
    if (!text.isEmpty() && DecimalNumber::length(text) == text.size()) {
        return DecimalNumber::value(text);
    }
    static const QRegularExpression special(QStringLiteral("\\A([+-]?)(?:(nan)|inf(?:inity)?)\\z"),
                                            QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = special.match(text.toString());
    if (!match.hasMatch()) {
        return {};
    }
    if (match.hasCaptured(2)) {
        return std::numeric_limits<double>::quiet_NaN();
    }
    constexpr double infinity = std::numeric_limits<double>::infinity();
    return match.capturedView(1) == u"-" ? -infinity : infinity;
}

QVariant date(QStringView text)
{
    const std::optional<QDateTime> date = PropertyListValues::dateFromText(text.trimmed());
    return date ? QVariant(*date) : QVariant();
}

QVariant data(QStringView text)
{
    QByteArray encoded;
    encoded.reserve(text.size());
    for (const QChar c : text) {
        if (!c.isSpace()) {
            encoded += c.toLatin1();
        }
    }
    const auto result = QByteArray::fromBase64Encoding(encoded, QByteArray::AbortOnBase64DecodingErrors);
    return result && encoded.size() % 4 == 0 ? QVariant(result.decoded) : QVariant();
}

/// One pass over one document. Within it an invalid QVariant always means that the document is malformed.
class Reader final
{
public:
    explicit Reader(const QString &text)
        : m_xml(text)
    {
        m_xml.setNamespaceProcessing(false);
    }

    QVariant document();

private:
    using Token = QXmlStreamReader::TokenType;

    Token nextTag();
    std::optional<QString> text();
    QVariant value();
    QVariant array();
    QVariant dictionary();

    QXmlStreamReader m_xml;
    std::int64_t m_values = 0;
    int m_level = 0;
};

/// Goes on to the next tag, or the end. Only white space, comments and the like may stand before it.
Reader::Token Reader::nextTag()
{
    for (;;) {
        switch (const Token token = m_xml.readNext()) {
        case Token::StartDocument:
        case Token::DTD:
        case Token::Comment:
        case Token::ProcessingInstruction:
            break;
        case Token::Characters:
            if (!m_xml.isWhitespace()) {
                return Token::Invalid;
            }
            break;
        default:
            return token;
        }
    }
}

/// What stands between the current start tag and its end tag, which must be text.
std::optional<QString> Reader::text()
{
    QString text = QStringLiteral("");
    for (;;) {
        switch (m_xml.readNext()) {
        case Token::Characters:
            text += m_xml.text();
            break;
        case Token::Comment:
        case Token::ProcessingInstruction:
            break;
        case Token::EndElement:
            return text;
        default:
            return std::nullopt;
        }
    }
}

QVariant Reader::document()
{
    if (nextTag() != Token::StartElement || m_xml.qualifiedName() != u"plist" || nextTag() != Token::StartElement) {
        return {};
    }
    QVariant top = value();
    const bool ends = top.isValid() && nextTag() == Token::EndElement && nextTag() == Token::EndDocument;
    return ends ? top : QVariant();
}

QVariant Reader::value()
{
    if (++m_values > PropertyListValues::maxValues) {
        return {};
    }
    const QString kind = m_xml.qualifiedName().toString();
    if (kind == u"array" || kind == u"dict") {
        if (m_level == PropertyListValues::maxLevels) {
            return {};
        }
        ++m_level;
        QVariant container = kind == u"array" ? array() : dictionary();
        --m_level;
        return container;
    }
    const std::optional<QString> content = text();
    if (!content) {
        return {};
    }
    if (kind == u"string") {
        return *content;
    }
    if (kind == u"integer") {
        return integer(*content);
    }
    if (kind == u"real") {
        return real(*content);
    }
    if (kind == u"date") {
        return date(*content);
    }
    if (kind == u"data") {
        return data(*content);
    }
    const bool isTrue = kind == u"true";
    return content->isEmpty() && (isTrue || kind == u"false") ? QVariant(isTrue) : QVariant();
}

QVariant Reader::array()
{
    QVariantList list;
    while (nextTag() == Token::StartElement) {
        list.append(value());
        if (!list.constLast().isValid()) {
            return {};
        }
    }
    return m_xml.isEndElement() ? QVariant(list) : QVariant();
}

QVariant Reader::dictionary()
{
    QVariantMap map;
    while (nextTag() == Token::StartElement) {
        if (m_xml.qualifiedName() != u"key") {
            return {};
        }
        const std::optional<QString> key = text();
        if (!key || nextTag() != Token::StartElement) {
            return {};
        }
        const QVariant under = value();
        if (!under.isValid()) {
            return {};
        }
        map.insert(*key, under);
    }
    return m_xml.isEndElement() ? QVariant(map) : QVariant();
}

} // namespace

QVariant read(const QByteArray &bytes)
{
    const QString text = decoded(bytes);
    const bool isPlain =
        hasOnlyPlainDocumentType(text) && lengthBeforeCrowdedTag(text, maxXmlAttributes) == text.size();
    return isPlain ? Reader(text).document() : QVariant();
}

} // namespace PropertyListXmlReader

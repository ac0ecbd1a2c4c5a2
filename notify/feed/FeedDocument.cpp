#include "notify/feed/FeedDocument.h"

#include "platform/data/CrowdedTag.h"
#include "platform/data/DocumentType.h"

#include <QByteArrayList>
#include <QStringDecoder>
#include <QXmlStreamReader>
#include <QtEndian>

#include <algorithm>
#include <optional>
#include <utility>

namespace
{

/// Far more than the longest declaration.
constexpr qsizetype maxDeclarationBytes = 1024;

/// Those that Qt does not know.
const QByteArrayList otherNamesOfLatin1 = {"ISO-LATIN-1", "L1",    "ISO-IR-100", "ISO_8859-1:1987",
                                           "IBM819",      "CP819", "CSISOLATIN1"};

std::optional<QStringConverter::Encoding> encodingOf(const QByteArray &bytes)
{
    const auto byFirstBytes = QStringConverter::encodingForData(bytes, u'<');
    if (byFirstBytes && *byFirstBytes != QStringConverter::Utf8) {
        return byFirstBytes;
    }
    // As text, so that the reader does not judge the encoding itself.
    QXmlStreamReader reader(QString::fromUtf8(bytes.left(maxDeclarationBytes)));
    reader.readNext();
    if (reader.hasError() && reader.error() != QXmlStreamReader::PrematureEndOfDocumentError) {
        return std::nullopt;
    }
    QByteArray declared = reader.documentEncoding().toLatin1().toUpper();
    if (declared == "US-ASCII" || declared == "ASCII") {
        declared = "UTF-8";
    } else if (otherNamesOfLatin1.contains(declared)) {
        declared = "ISO-8859-1";
    }
    const auto encoding =
        declared.isEmpty() ? QStringConverter::Utf8 : QStringConverter::encodingForName(declared.constData());
    const bool fits = encoding == QStringConverter::Utf8 || encoding == QStringConverter::Latin1;
    return fits ? encoding : std::nullopt;
}

/// How many bytes come before the first one that is not UTF-8.
qsizetype lengthOfUtf8(QByteArrayView bytes)
{
    if (bytes.isValidUtf8()) {
        return bytes.size();
    }
    // A close lower limit first, from ends that do not split a character.
    const auto startOfCharacter = [bytes](qsizetype offset) {
        while (offset > 0 && (static_cast<unsigned char>(bytes[offset]) & 0xC0) == 0x80) {
            --offset;
        }
        return offset;
    };
    qsizetype good = 0;
    qsizetype bad = bytes.size();
    while (bad - good > 1) {
        const qsizetype middle = good + (bad - good) / 2;
        (bytes.first(startOfCharacter(middle)).isValidUtf8() ? good : bad) = middle;
    }
    qsizetype length = startOfCharacter(good);
    for (qsizetype next = 1; next <= 4 && length + next <= bytes.size(); ++next) {
        if (bytes.sliced(length, next).isValidUtf8()) {
            length += next;
            next = 0;
        }
    }
    return length;
}

enum class ByteOrder { Little, Big };

/// How many bytes come before the first one that is not UTF-16.
qsizetype lengthOfUtf16(QByteArrayView bytes, ByteOrder order)
{
    const auto unitAt = [bytes, order](qsizetype place) {
        const char *const unit = bytes.data() + place;
        return order == ByteOrder::Big ? qFromBigEndian<char16_t>(unit) : qFromLittleEndian<char16_t>(unit);
    };
    qsizetype length = 0;
    while (length + 2 <= bytes.size()) {
        const char16_t unit = unitAt(length);
        if (!QChar::isSurrogate(unit)) {
            length += 2;
            continue;
        }
        const bool isPair =
            QChar::isHighSurrogate(unit) && length + 4 <= bytes.size() && QChar::isLowSurrogate(unitAt(length + 2));
        if (!isPair) {
            break;
        }
        length += 4;
    }
    return length;
}

/// How many bytes come before the first one that is not UTF-32.
qsizetype lengthOfUtf32(QByteArrayView bytes, ByteOrder order)
{
    qsizetype length = 0;
    while (length + 4 <= bytes.size()) {
        const char *const unit = bytes.data() + length;
        const char32_t character =
            order == ByteOrder::Big ? qFromBigEndian<char32_t>(unit) : qFromLittleEndian<char32_t>(unit);
        if (character > QChar::LastValidCodePoint || QChar::isSurrogate(character)) {
            break;
        }
        length += 4;
    }
    return length;
}

/// How many bytes come before the first one that is not in `encoding`, which is one of encodingOf.
qsizetype lengthIn(QStringConverter::Encoding encoding, QByteArrayView bytes)
{
    switch (encoding) {
    case QStringConverter::Utf8:
        return lengthOfUtf8(bytes);
    case QStringConverter::Utf16LE:
        return lengthOfUtf16(bytes, ByteOrder::Little);
    case QStringConverter::Utf16BE:
        return lengthOfUtf16(bytes, ByteOrder::Big);
    case QStringConverter::Utf32LE:
        return lengthOfUtf32(bytes, ByteOrder::Little);
    case QStringConverter::Utf32BE:
        return lengthOfUtf32(bytes, ByteOrder::Big);
    default:
        return bytes.size();
    }
}

} // namespace

FeedDocument feedDocument(const QByteArray &bytes, int maxAttributes)
{
    const auto encoding = encodingOf(bytes);
    if (!encoding) {
        return {};
    }
    const QByteArrayView valid = QByteArrayView(bytes).first(lengthIn(*encoding, bytes));
    QString text = QStringDecoder(*encoding).decode(valid);
    const qsizetype length =
        std::min(lengthBeforeCrowdedTag(text, maxAttributes), lengthBeforeDeclaringDocumentType(text));
    const bool isWhole = length == text.size() && valid.size() == bytes.size();
    text.truncate(length);
    return {std::move(text), isWhole};
}

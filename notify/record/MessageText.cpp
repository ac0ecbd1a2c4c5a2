#include "notify/record/MessageText.h"

namespace
{

constexpr qsizetype maxBytesOfAUnit = 3; // A pair of surrogates takes four.

/// Of how many characters the beginning of the text consists that takes no more than `maxBytes`.
qsizetype lengthWithin(const QString &text, qsizetype maxBytes)
{
    if (text.size() <= maxBytes / maxBytesOfAUnit) {
        return text.size();
    }
    qsizetype bytes = 0;
    qsizetype end = 0;
    while (end < text.size()) {
        const char16_t unit = text[end].unicode();
        const bool isPair = QChar::isHighSurrogate(unit) && end + 1 < text.size() && text[end + 1].isLowSurrogate();
        bytes += isPair ? 4 : unit < 0x80 ? 1 : unit < 0x800 ? 2 : maxBytesOfAUnit;
        if (bytes > maxBytes) {
            break;
        }
        end += isPair ? 2 : 1;
    }
    return end;
}

} // namespace

bool isHtml(const QString &text)
{
    return text.startsWith(u'<');
}

QString shortenedText(const QString &text, qsizetype maxBytes)
{
    const qsizetype length = lengthWithin(text, maxBytes);
    if (length == text.size()) {
        return text;
    }
    QString beginning = text.first(length);
    if (const qsizetype tag = beginning.lastIndexOf(u'<'); isHtml(text) && tag > beginning.lastIndexOf(u'>')) {
        beginning.truncate(tag);
    }
    return beginning + QChar(u'\u2026');
}

#include "platform/text/CombiningMarks.h"

QString withoutPiledUpMarks(const QString &text)
{
    QString result;
    result.reserve(text.size());
    int marks = 0;
    qsizetype size = 0;
    for (QStringView rest = text; !rest.isEmpty(); rest = rest.sliced(size)) {
        const QChar first = rest.front();
        const bool isPair = first.isHighSurrogate() && rest.size() > 1 && rest[1].isLowSurrogate();
        size = isPair ? 2 : 1;
        const char32_t character = isPair ? QChar::surrogateToUcs4(first, rest[1]) : first.unicode();
        const bool isMark = QChar::isMark(character) || QChar::category(character) == QChar::Other_Format;
        marks = isMark ? marks + 1 : 0;
        if (marks <= maxMarks) {
            result += rest.first(size);
        }
    }
    return result;
}

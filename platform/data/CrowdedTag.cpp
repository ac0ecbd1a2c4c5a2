#include "platform/data/CrowdedTag.h"

namespace
{

bool canStartName(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || c == u'_' || c == u':' || c >= QChar(0x80);
}

/// Whether the tag that begins with `tag` has more attributes than that.
bool isCrowded(QStringView tag, int maxAttributes)
{
    int attributes = 0;
    QChar quote;
    for (const QChar c : tag) {
        // No tag holds a '<', not even in quotes: at the next one this tag is over, well-formed or not.
        if (c == u'<') {
            return false;
        }
        if (!quote.isNull()) {
            quote = c == quote ? QChar() : quote;
        } else if (c == u'"' || c == u'\'') {
            quote = c;
        } else if (c == u'>') {
            return false;
        } else if (c == u'=' && ++attributes > maxAttributes) {
            return true;
        }
    }
    return false;
}

} // namespace

qsizetype lengthBeforeCrowdedTag(QStringView xml, int maxAttributes)
{
    for (qsizetype start = xml.indexOf(u'<'); start >= 0; start = xml.indexOf(u'<', start + 1)) {
        const QStringView tag = xml.sliced(start + 1);
        if (!tag.isEmpty() && canStartName(tag.front()) && isCrowded(tag, maxAttributes)) {
            return start;
        }
    }
    return xml.size();
}

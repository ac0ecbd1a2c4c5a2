#include "notify/feed/LongStretches.h"

namespace
{

bool isOfBase64(QChar character)
{
    const char16_t code = character.unicode();
    return (code >= u'A' && code <= u'Z') || (code >= u'a' && code <= u'z') || (code >= u'0' && code <= u'9') ||
           code == u'+' || code == u'/' || code == u'=' || code == u' ' || code == u'\t' || code == u'\n' ||
           code == u'\r';
}

} // namespace

void shortenLongStretches(QString &text, qsizetype maxLength)
{
    if (text.size() <= maxLength) {
        return;
    }
    const auto begin = text.begin();
    auto kept = begin;
    qsizetype length = 0; // Of the stretch so far.
    for (const QChar character : std::as_const(text)) {
        length = isOfBase64(character) ? length + 1 : 0;
        if (length <= maxLength) {
            *kept++ = character;
        }
    }
    text.truncate(kept - begin);
}

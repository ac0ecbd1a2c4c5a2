#include "platform/data/DecimalNumber.h"

#include <QLocale>

#include <algorithm>

namespace DecimalNumber
{

namespace
{

bool isSign(QChar c)
{
    return c == u'+' || c == u'-';
}

qsizetype countDigits(QStringView text)
{
    const auto *end = std::find_if(text.begin(), text.end(), [](QChar c) { return c < u'0' || c > u'9'; });
    return end - text.begin();
}

} // namespace

qsizetype length(QStringView text)
{
    qsizetype end = !text.isEmpty() && isSign(text.front()) ? 1 : 0;
    const qsizetype whole = countDigits(text.sliced(end));
    end += whole;
    qsizetype fraction = 0;
    if (end < text.size() && text[end] == u'.') {
        fraction = countDigits(text.sliced(end + 1));
        end += 1 + fraction;
    }
    if (whole + fraction == 0) {
        return 0;
    }
    if (end < text.size() && text[end].toLower() == u'e') {
        qsizetype exponent = end + 1;
        exponent += exponent < text.size() && isSign(text[exponent]) ? 1 : 0;
        const qsizetype digits = countDigits(text.sliced(exponent));
        end = digits > 0 ? exponent + digits : end;
    }
    return end;
}

double value(QStringView text)
{
    // Only QLocale's own reading ends in infinity; that of the string classes ends in 0 there.
    return QLocale::c().toDouble(text);
}

} // namespace DecimalNumber

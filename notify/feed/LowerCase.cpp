#include "notify/feed/LowerCase.h"

#include "platform/data/TextBeginning.h"

#include <QString>

namespace
{

/// Where a character becomes two, as U+0130 does, Qt moves all that is behind it: of 400,000 each, for two seconds. The
/// case of a character does not depend on its neighbours.
constexpr qsizetype maxPiece = 512;

} // namespace

QString lowerCase(QStringView text)
{
    QString lower = QLatin1String("");
    lower.reserve(text.size());
    while (!text.isEmpty()) {
        const QStringView piece = beginningOf(text, maxPiece);
        lower += piece.toString().toLower();
        text = text.sliced(piece.size());
    }
    return lower;
}

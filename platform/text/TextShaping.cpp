#include "platform/text/TextShaping.h"

#include <algorithm>

namespace
{

struct CharacterRange {
    char16_t first;
    char16_t last;
};

/// Without what only forms or joins others, which may stand in any script.
constexpr CharacterRange simpleCharacters[] = {
    {0x0000, 0x00AC}, {0x00AE, 0x02FF}, // Latin, with all its accents in one; a soft hyphen may be no picture at all
    {0x0370, 0x0482}, {0x048A, 0x052F}, // Greek and Cyrillic
    {0x1E00, 0x1EFF}, {0x2010, 0x2027}, // more Latin, as Vietnamese has it; dashes, quotation marks, bullets, ellipses
    {0x2030, 0x203A}, {0x20A0, 0x20BF}, // signs of thousands and minutes, currencies
    {0x2190, 0x21FF},                   // arrows
};

bool isSimple(QChar character)
{
    return std::ranges::any_of(simpleCharacters, [code = character.unicode()](CharacterRange range) {
        return code >= range.first && code <= range.last;
    });
}

} // namespace

bool needsShaping(QStringView text)
{
    return !std::ranges::all_of(text, isSimple);
}

#include "platform/text/SystemFont.h"

#include <QFontDatabase>

QFont systemFont(QFont::Weight weight)
{
    constexpr int size = 12;
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(size);
    font.setWeight(weight);
    return font;
}

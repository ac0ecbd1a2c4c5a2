#include "platform/text/SystemFont.h"

#include "platform/text/TextShaping.h"

#include <QApplication>

QFont systemFont(QFont::Weight weight, QStringView text)
{
    constexpr int size = 12;
    QFont font = fontFor(text, QGuiApplication::font());
    font.setPixelSize(size);
    font.setWeight(weight); // Whatever the desktop's has.
    return weight >= QFont::Bold ? boldOf(font) : font;
}

QFont fontFor(QStringView text, QFont font)
{
    font.setStyleStrategy(needsShaping(text) ? QFont::PreferDefault : QFont::PreferNoShaping);
    return font;
}

QFont boldOf(QFont font)
{
    font.setBold(true);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

void setApplicationFont(const QFont &font)
{
    QApplication::setFont(fontFor({}, font));
}

#pragma once

#include "notify/text/HtmlStyle.h"

#include <QColor>
#include <QString>
#include <QStringList>

/// What is the same for all of a text, until an element within it has it otherwise.
struct HtmlSurroundings final {
    QColor text;
    QColor background;
    int size = 12;  ///< Of the font, in pixels.
    int tables = 0; ///< How deep in tables it is; the same for the others.
    int lists = 0;
    int quotes = 0;
    bool isPreformatted = false;
    bool isLink = false;
    bool isSizeless = false; ///< Its text is not seen.

    /// The same in an element of that style, as far as it is seen there.
    [[nodiscard]] HtmlSurroundings within(const HtmlStyle &style) const
    {
        HtmlSurroundings inside = *this;
        inside.isSizeless = style.isSizelessWithin(isSizeless);
        return inside;
    }
};

/// Writes what an element asks for as attributes of tidy HTML. Reentrant.
class HtmlStyleWriter final
{
public:
    /// The style's declarations for characters, each with its semicolon: without what the surroundings have anyway, or
    /// what could not be read. They become those within the element.
    [[nodiscard]] QString characterStyle(const HtmlStyle &style, HtmlSurroundings &within);

    /// The attribute with these declarations; nothing without any.
    [[nodiscard]] static QString styleAttribute(const QString &declarations);
    /// Alignment and direction.
    [[nodiscard]] static QString blockAttributes(const HtmlStyle &style);

private:
    [[nodiscard]] bool isKept(const QString &family);

    QStringList m_families;
};

#pragma once

#include <QColor>
#include <QString>

#include <gumbo.h>
#include <optional>

/// What an element of HTML asks for by its name, its attributes and its style, as far as it is kept. What is not
/// understood counts as not asked for.
struct HtmlStyle final {
    QColor colour; ///< Invalid for none, as the others.
    QColor background;
    QColor border;
    int size = 0;   ///< Of the font, in pixels; 0 for none.
    QString family; ///< As it is asked for, of harmless characters.
    std::optional<bool> isBold;
    std::optional<bool> isItalic;
    std::optional<bool> isUnderlined;
    std::optional<bool> isStruckOut;
    QString alignment;    ///< "left", "right", "center", "justify"; empty for none.
    QString direction;    ///< "ltr", "rtl"; empty for none.
    int widthPercent = 0; ///< 1 to 100; 0 for none, and for one in pixels.
    bool isHidden = false;
    bool isSizeless = false; ///< Nothing in it is seen but elements with a size of their own.

    /// The same of what is within it, when it is itself in something with or without size.
    [[nodiscard]] bool isSizelessWithin(bool isOutside) const { return isSizeless || (isOutside && size == 0); }
};

/// That of an element within text of `size` pixels. Reentrant.
[[nodiscard]] HtmlStyle htmlStyle(const GumboNode &element, int size);

/// A colour as HTML writes it: a name, "#rgb", "#rrggbb", the same without its "#", "rgb(r, g, b)"; invalid for all
/// else, a transparent one included.
[[nodiscard]] QColor htmlColour(QStringView text);

#pragma once

#include <QColor>
#include <QString>

/// What the text of a message stands on.
struct HtmlGround final {
    QColor text;
    QColor background;
};

enum class HtmlTables {
    Kept,
    Dissolved ///< Their cells become paragraphs.
};

/// HTML from outside, written anew for Qt: tidy, and only with what it shows within a moment and without a look at
/// anything else. The source is read as the standard has it, so that it can be as untidy as HTML is. Kept are text,
/// line breaks and paragraphs, headings, emphasis, fonts, colours that can be read on `ground`, lists, quotations,
/// links that can be opened and tables that are more than a frame around the text; an image becomes its alternative
/// text. Everything else falls away, and its text stays, unless it is hidden.
///
/// Of the text no more than maxTextBytes (notify/record/MessageText.h) and 5,000 changes of script come out, and then
/// an ellipsis; at most 2,000 elements, 60 of them within one another, tables 4 deep and lists 4, 150 cells with all
/// that they span, 6 families of fonts and 2,500 lines. In words without an end there are places where they may be
/// broken. Takes time in proportion to the text. Reentrant.
[[nodiscard]] QString cleanHtml(const QString &html, const HtmlGround &ground, HtmlTables tables);

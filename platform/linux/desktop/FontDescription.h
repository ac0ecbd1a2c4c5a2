#pragma once

#include <QFont>
#include <QStringList>

/// A font as desktops write it in one line, by the grammar of Pango: "Noto Sans, DejaVu Sans Semi-Bold Italic 10.5".
/// What it does not say is the font's own.
struct FontDescription {
    QStringList families = {}; ///< In order of preference; may be none.
    QFont::Weight weight = QFont::Normal;
    bool isItalic = false;
    int stretch = QFont::Unstretched;
    double size = 0; ///< 0 when it is not said, or beyond what anybody reads: less than 4 or more than 96.
    bool isSizeInPixels = false;

    bool operator==(const FontDescription &) const = default;
};

/// Reads such a line. Nothing in it is an error: what is no size, style, variation or feature at its end is part of a
/// family's name. No more is read than 1,000 characters. Reentrant.
[[nodiscard]] FontDescription readFontDescription(const QString &line);

/// `font` with what the description says, as far as it says something.
[[nodiscard]] QFont describedFont(const FontDescription &description, QFont font);

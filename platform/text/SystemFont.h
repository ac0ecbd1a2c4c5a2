#pragma once

#include <QFont>
#include <QStringView>

/// The system's font for `text` in a pop-up, in the one size that pop-ups have: 12 points, each a device-independent
/// pixel. Needs the GUI application object. Main thread only.
[[nodiscard]] QFont systemFont(QFont::Weight weight, QStringView text);

/// `font` for `text`: without shaping, unless the text needs it (platform/text/TextShaping.h). Qt keeps some 40 kB of
/// tables for each font with which it has shaped a text, and Qt's own switch leaves out what Arabic needs.
[[nodiscard]] QFont fontFor(QStringView text, QFont font);

/// The bold face of `font`, not hinted: its strokes are two pixels wide, at which hinting hardly shows, and FreeType
/// keeps some 50 kB for each face that is.
[[nodiscard]] QFont boldOf(QFont font);

/// Makes that the application's font, for texts that need no shaping: all of our own. A text from outside is given
/// its font by fontFor(). Main thread only.
void setApplicationFont(const QFont &font);

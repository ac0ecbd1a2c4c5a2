#pragma once

#include <QString>

/// How much of a message's text is shown, in bytes of UTF-8: more than anybody reads in a pop-up.
inline constexpr qsizetype maxTextBytes = qsizetype{64} * 1024;

/// How much of it is kept when it is HTML, most of which is no text: newsletters say 20 kB in 80 kB of HTML. So little
/// all the same that messages can wait in memory and in a file.
inline constexpr qsizetype maxHtmlBytes = qsizetype{256} * 1024;

/// Whether the text is HTML: when it begins with "<". Nothing is trimmed before, for a blank in front is how an author
/// has HTML shown as it is written.
[[nodiscard]] bool isHtml(const QString &text);

/// A text of no more than so many bytes of UTF-8, as it is; of a longer one the beginning, and an ellipsis behind it,
/// which does not count. HTML is not cut within a tag, where nobody would see the ellipsis. What comes out stays as it
/// is when it goes in again. Reentrant.
[[nodiscard]] QString shortenedText(const QString &text, qsizetype maxBytes);

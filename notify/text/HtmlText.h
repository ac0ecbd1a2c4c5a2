#pragma once

#include "platform/text/CombiningMarks.h"
#include "platform/text/ScriptRuns.h"

#include <QString>

/// The text of tidy HTML as it is being written, with the marks in it, and within the limits of what Qt lays out in a
/// moment. Reentrant.
class HtmlText final
{
public:
    enum class Blanks { Folded, Kept };
    enum class Words { Usual, InTable };

    /// Writes a text, without what it cannot hold: what has a meaning in HTML becomes a reference to a character, what
    /// only Qt's documents use as marks of their own falls away, and a word without an end gets places where a line may
    /// end, sooner in a table.
    void writeText(const QString &text, Blanks blanks, Words words);
    /// A blank in its place when there are too many lines already.
    void writeLineBreak();
    /// A tag, within which no word is taken to end.
    void writeTag(const QString &tag) { m_html += tag; }
    void endWord();

    /// The value of an attribute, between its quotes, without what a text cannot hold either.
    [[nodiscard]] static QString attributeValue(const QString &text);

    [[nodiscard]] const QString &html() const { return m_html; }
    /// Whether it has ended with an ellipsis: no text is written any more.
    [[nodiscard]] bool isCut() const { return m_isCut; }

private:
    void writeBlank(char32_t c, Blanks blanks);
    void writeCharacter(char32_t c, int maxWord);
    /// False when that would be too much text; it is cut then.
    [[nodiscard]] bool takeBytes(int bytes);
    void cut();

    QString m_html;
    ScriptRuns m_scriptRuns;
    qsizetype m_bytes = 0; ///< Of text.
    int m_lines = 0;
    int m_word = 0; ///< Characters since the last place where a line can be broken.
    int m_scriptRunsInWord = 0;
    int m_marks = 0;
    bool m_isCut = false;
};

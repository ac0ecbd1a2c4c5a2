#include "notify/text/HtmlText.h"

#include "notify/record/MessageText.h"

namespace
{

constexpr int maxLines = 2500;
constexpr int maxScriptRuns = 5000; ///< As many as 30 kB of Japanese have.
constexpr int maxUsualWord = 100;
constexpr int maxWordInTable = 30;
constexpr int maxScriptRunsInWord = 50;

constexpr char16_t wordBreak = u'\u200b';

bool isBlank(char32_t c)
{
    return c == U' ' || c == U'\n' || c == U'\t' || c == U'\r' || c == U'\f';
}

/// What Qt's documents use as marks of their own, or cannot hold.
bool isForbidden(char32_t c)
{
    constexpr char32_t firstPrintable = 0x20;
    return c < firstPrintable || QChar::isSurrogate(c) || QChar::isNonCharacter(c) ||
           c == QChar::ObjectReplacementCharacter || c == QChar::ParagraphSeparator || c == QChar::LineSeparator;
}

char32_t characterAt(const QString &text, qsizetype i)
{
    const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
    return isPair ? QChar::surrogateToUcs4(text[i], text[i + 1]) : text[i].unicode();
}

int bytesOf(char32_t c)
{
    return c < 0x80 ? 1 : c < 0x800 ? 2 : QChar::requiresSurrogates(c) ? 4 : 3;
}

qsizetype charactersOf(char32_t c)
{
    return QChar::requiresSurrogates(c) ? 2 : 1;
}

} // namespace

void HtmlText::writeText(const QString &text, Blanks blanks, Words words)
{
    const int maxWord = words == Words::InTable ? maxWordInTable : maxUsualWord;
    for (qsizetype i = 0; i < text.size();) {
        const char32_t c = characterAt(text, i);
        i += charactersOf(c);
        if (isBlank(c)) {
            writeBlank(c, blanks);
        } else if (!isForbidden(c)) {
            writeCharacter(c, maxWord);
        }
    }
}

QString HtmlText::attributeValue(const QString &text)
{
    QString value;
    for (qsizetype i = 0; i < text.size();) {
        const char32_t c = characterAt(text, i);
        if (!isForbidden(c)) {
            value += QStringView(text).sliced(i, charactersOf(c));
        }
        i += charactersOf(c);
    }
    return value.toHtmlEscaped();
}

void HtmlText::writeLineBreak()
{
    if (m_isCut) {
        return;
    }
    const bool isThereRoom = m_lines < maxLines;
    m_lines += isThereRoom ? 1 : 0;
    m_html += isThereRoom ? QStringLiteral("<br/>") : QStringLiteral(" ");
    endWord();
}

void HtmlText::endWord()
{
    m_word = 0;
    m_scriptRunsInWord = 0;
    m_marks = 0;
}

void HtmlText::writeBlank(char32_t c, Blanks blanks)
{
    endWord();
    const bool isNothing = blanks == Blanks::Folded && m_html.endsWith(u' ');
    if (isNothing || !takeBytes(1)) {
        return;
    }
    if (blanks == Blanks::Folded) {
        m_html += u' ';
    } else if (c == U'\n') {
        writeLineBreak();
    } else {
        m_html += c == U'\t' ? QStringLiteral("    ") : QStringLiteral(" ");
    }
}

void HtmlText::writeCharacter(char32_t c, int maxWord)
{
    const bool isMark = QChar::isMark(c) || QChar::category(c) == QChar::Other_Format;
    m_marks = isMark ? m_marks + 1 : 0;
    if (m_marks > maxMarks || !takeBytes(bytesOf(c))) {
        return;
    }
    if (m_scriptRuns.add(c)) {
        ++m_scriptRunsInWord;
    }
    if (m_scriptRuns.count() > maxScriptRuns) {
        cut();
        return;
    }
    if (!isMark && (++m_word > maxWord || m_scriptRunsInWord > maxScriptRunsInWord)) {
        m_html += QChar(wordBreak);
        m_word = 1;
        m_scriptRunsInWord = 0;
    }
    switch (c) {
    case U'<':
        m_html += QStringLiteral("&lt;");
        break;
    case U'>':
        m_html += QStringLiteral("&gt;");
        break;
    case U'&':
        m_html += QStringLiteral("&amp;");
        break;
    case U'"':
        m_html += QStringLiteral("&quot;");
        break;
    default:
        m_html += QStringView(QChar::fromUcs4(c));
    }
}

bool HtmlText::takeBytes(int bytes)
{
    if (m_isCut) {
        return false;
    }
    m_bytes += bytes;
    if (m_bytes > maxTextBytes) {
        cut();
    }
    return !m_isCut;
}

void HtmlText::cut()
{
    m_isCut = true;
    m_html += QChar(u'\u2026');
}

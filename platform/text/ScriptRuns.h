#pragma once

#include <QChar>
#include <QStringView>

/// Counts the pieces in which Qt lays out a text, given character by character: it begins another one where the script
/// or the direction changes, and with each tab and each mark that sets a direction. The time that a layout takes grows
/// with their number, and with its square within one word.
class ScriptRuns final
{
public:
    /// Takes the next character. True when it begins another piece; the first one of a text may.
    bool add(char32_t character);

    [[nodiscard]] int count() const { return m_count; }

private:
    QChar::Script m_script = QChar::Script_Common;
    bool m_isRightToLeft = false;
    int m_count = 0;
};

/// As much of the text as is laid out in 2,000 such pieces. That is several screens of any writing: some 5,000
/// characters of Japanese, which changes its script the most often, and more than 20,000 of Hebrew or Arabic with
/// foreign words and numbers in every sentence. Takes time in proportion to the length of the result. Reentrant.
[[nodiscard]] QStringView firstScriptRuns(QStringView text);

#include "platform/text/ScriptRuns.h"

namespace
{

constexpr int maxRuns = 2000;

bool setsDirection(QChar::Direction direction)
{
    switch (direction) {
    case QChar::DirLRE:
    case QChar::DirRLE:
    case QChar::DirLRO:
    case QChar::DirRLO:
    case QChar::DirPDF:
    case QChar::DirLRI:
    case QChar::DirRLI:
    case QChar::DirFSI:
    case QChar::DirPDI:
        return true;
    default:
        return false;
    }
}

/// What the characters around it decide has none of its own.
bool hasScript(QChar::Script script)
{
    return script > QChar::Script_Common;
}

} // namespace

bool ScriptRuns::add(char32_t character)
{
    const QChar::Direction direction = QChar::direction(character);
    const QChar::Script script = QChar::script(character);
    bool begins = character == U'\t' || setsDirection(direction);
    if (hasScript(script) && script != m_script) {
        begins = begins || hasScript(m_script);
        m_script = script;
    }
    const bool isRightToLeft = direction == QChar::DirR || direction == QChar::DirAL;
    // Numbers run from left to right within any writing.
    const bool isLeftToRight = direction == QChar::DirL || direction == QChar::DirEN || direction == QChar::DirAN;
    if (isRightToLeft != m_isRightToLeft && (isRightToLeft || isLeftToRight)) {
        begins = true;
        m_isRightToLeft = isRightToLeft;
    }
    m_count += begins ? 1 : 0;
    return begins;
}

QStringView firstScriptRuns(QStringView text)
{
    ScriptRuns runs;
    qsizetype at = 0;
    while (at < text.size()) {
        const bool isPair = text[at].isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate();
        const char32_t character = isPair ? QChar::surrogateToUcs4(text[at], text[at + 1]) : text[at].unicode();
        runs.add(character);
        if (runs.count() > maxRuns) {
            return text.first(at);
        }
        at += isPair ? 2 : 1;
    }
    return text;
}

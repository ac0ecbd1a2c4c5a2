#include "notify/text/MarkupLimits.h"

#include "platform/text/ScriptRuns.h"

#include <QStringList>

#include <algorithm>
#include <exception>

namespace
{

constexpr int maxElements = 500;
constexpr qsizetype maxDepth = 100;
constexpr qsizetype maxTableDepth = 4;
constexpr int maxCells = 150; ///< A cell that spans others counts as all of them.
constexpr int maxFonts = 20;
constexpr qsizetype maxStyle = 4096;
constexpr int maxMatching = 5000; ///< Rules of style sheets times elements: each is held against each.
constexpr qsizetype maxWordLength = 250;
constexpr qsizetype maxTextInTables = 8'192; ///< It is laid out several times.
constexpr int lineInTable = 16;              ///< What a line break counts in that, or an entity that may be one.
constexpr int scriptRunInTable = 8;          ///< And what a change of script or direction does.
constexpr int maxLines = 4000;
constexpr int maxScriptRuns = 8000; ///< As many as 50 kB of Japanese have.
constexpr int maxImages = 50;
/// With style sheets: a rule for elements within others within others is tried with all that they lie in.
constexpr qsizetype maxStyledDepth = 12;
constexpr int maxNumberLength = 4;

const QString table = QStringLiteral("table");

struct BeyondLimits final : std::exception {
};

void require(bool condition)
{
    if (!condition) {
        throw BeyondLimits();
    }
}

bool isOneOf(QStringView name, std::initializer_list<QStringView> names)
{
    return std::ranges::find(names, name) != names.end();
}

/// Elements without an end tag.
bool isEmptyElement(QStringView name)
{
    return isOneOf(name, {u"br", u"img", u"hr", u"meta", u"link", u"input", u"col", u"base", u"wbr"});
}

/// Elements whose contents are no markup.
bool isRawTextElement(QStringView name)
{
    return isOneOf(name, {u"style", u"script", u"title", u"textarea"});
}

/// Between two of these a line may be broken, as Chinese and Japanese have no blanks for that.
bool isIdeograph(QChar c)
{
    return c >= u'\u4e00' && c <= u'\u9fff';
}

/// Values that Qt makes no length of.
bool isFreeAttribute(QStringView name)
{
    return isOneOf(name, {u"href", u"src", u"alt", u"title", u"name", u"id", u"class", u"content", u"xmlns", u"lang"});
}

/// One pass over the text, in the steps in which Qt's own parser goes. Throws BeyondLimits.
class Scan final
{
public:
    explicit Scan(QStringView text)
        : m_text(text)
    {
    }

    void run()
    {
        while (m_at < m_text.size()) {
            if (m_text[m_at] == u'<') {
                ++m_at;
                markup();
                m_word = 0;
            } else {
                character(m_text[m_at]);
                ++m_at;
            }
        }
        require(m_rules * m_elements <= maxMatching && (m_rules == 0 || m_deepest <= maxStyledDepth));
    }

private:
    void character(QChar c)
    {
        if (!m_open.isEmpty() && isRawTextElement(m_open.last())) {
            require(++m_style <= maxStyle);
            m_rules += c == u'{' || c == u',' ? 1 : 0;
            number(c);
            if (c == u':') { // Of "font-size:" and the like, where a style sheet has them.
                const QStringView before = m_text.first(m_at).trimmed();
                font(before.last(std::min<qsizetype>(before.size(), 12)));
            }
            return;
        }
        const bool endsWord = c.isSpace() || (m_at > 0 && isIdeograph(c) && isIdeograph(m_text[m_at - 1]));
        m_word = endsWord ? 0 : m_word + 1;
        const bool mayBreakLine = c == u'\n' || c == u'\r' || c == u'&' || c == QChar(QChar::ParagraphSeparator);
        m_lines += mayBreakLine ? 1 : 0;
        const bool beginsRun = m_scriptRuns.add(c.unicode());
        if (m_tables > 0) {
            m_textInTables += mayBreakLine ? lineInTable : (beginsRun ? scriptRunInTable : 1);
        }
        require(m_lines <= maxLines && m_scriptRuns.count() <= maxScriptRuns);
        require(m_word <= maxWordLength && m_textInTables <= maxTextInTables);
    }

    void markup()
    {
        skipSpace();
        if (rest().startsWith(u"!--")) {
            const qsizetype end = m_text.indexOf(u"-->", m_at + 3);
            m_at = end < 0 ? m_text.size() : end + 3;
        } else if (rest().startsWith(u'!')) {
            const qsizetype end = m_text.indexOf(u'>', m_at);
            m_at = end < 0 ? m_text.size() : end + 1;
        } else if (rest().startsWith(u'/')) {
            ++m_at;
            endTag();
        } else {
            startTag();
        }
    }

    void endTag()
    {
        skipSpace();
        const QString name = word();
        skipSpace();
        require(rest().startsWith(u'>'));
        ++m_at;
        // As Qt does: all that was opened within it ends with it, and an end without a beginning is nothing.
        if (const qsizetype opened = m_open.lastIndexOf(name); opened >= 0) {
            require(opened == m_open.size() - 1 || !isRawTextElement(m_open.last()));
            m_open.resize(opened);
            m_tables = m_open.count(table);
        }
    }

    void startTag()
    {
        require(++m_elements <= maxElements);
        require(m_open.isEmpty() || !isRawTextElement(m_open.last()));
        const QString name = word();
        m_span = 1;
        while (true) {
            skipSpace();
            require(m_at < m_text.size() && m_text[m_at] != u'<');
            if (m_text[m_at] == u'>') {
                ++m_at;
                break;
            }
            if (m_text[m_at] == u'/') {
                ++m_at;
                continue;
            }
            attribute();
        }
        if (isOneOf(name, {u"img", u"image"})) {
            require(++m_images <= maxImages);
        }
        if (isOneOf(name, {u"td", u"th"})) {
            m_cells += m_span;
            require(m_cells <= maxCells);
        }
        if (!isEmptyElement(name)) {
            m_open.append(name);
            m_tables = m_open.count(table);
            m_deepest = std::max(m_deepest, m_open.size());
            require(m_open.size() <= maxDepth && m_tables <= maxTableDepth);
        }
    }

    void attribute()
    {
        const QString name = word();
        skipSpace();
        if (!rest().startsWith(u'=')) {
            require(!name.isEmpty());
            return;
        }
        ++m_at;
        skipSpace();
        const QStringView value = attributeValue();
        if (isFreeAttribute(name)) {
            return;
        }
        require(!value.contains(u'&'));
        if (isOneOf(name, {u"colspan", u"rowspan"})) {
            const int span = std::max(1, value.toInt());
            require(span <= maxCells);
            m_span *= span;
        }
        m_digits = 0;
        for (const QChar c : value) {
            number(c);
        }
        if (name == QLatin1String("face")) {
            font(u"font");
        } else if (name == QLatin1String("style")) {
            font(value);
        }
    }

    QStringView attributeValue()
    {
        const bool isQuoted = rest().startsWith(u'"') || rest().startsWith(u'\'');
        if (!isQuoted) {
            const qsizetype start = m_at;
            static_cast<void>(word());
            return m_text.sliced(start, m_at - start);
        }
        const QChar mark = m_text[m_at++];
        const qsizetype end = m_text.indexOf(mark, m_at);
        require(end >= 0);
        const QStringView value = m_text.sliced(m_at, end - m_at);
        require(!value.contains(u'<') && !value.contains(u'>'));
        m_at = end + 1;
        return value;
    }

    /// A name, in small letters.
    QString word()
    {
        const qsizetype start = m_at;
        while (m_at < m_text.size()) {
            const QChar c = m_text[m_at];
            const bool endsTag = c == u'/' && m_at + 1 < m_text.size() && m_text[m_at + 1] == u'>';
            if (c == u'>' || c == u'<' || c == u'=' || c.isSpace() || endsTag) {
                break;
            }
            require(c != u'"' && c != u'\'');
            ++m_at;
        }
        return m_text.sliced(start, m_at - start).toString().toLower();
    }

    void skipSpace()
    {
        while (m_at < m_text.size() && m_text[m_at].isSpace()) {
            ++m_at;
        }
    }

    /// Looks at lengths digit by digit; a colour, which begins with "#", is none.
    void number(QChar c)
    {
        if (c == u'#') {
            m_isColour = true;
        } else if (c.isLetterOrNumber()) {
            m_digits = c.isDigit() ? m_digits + 1 : 0;
            require(m_isColour || m_digits <= maxNumberLength);
        } else {
            m_isColour = false;
            m_digits = 0;
        }
    }

    void font(QStringView words)
    {
        m_fonts += static_cast<int>(words.count(u"font", Qt::CaseInsensitive));
        require(m_fonts <= maxFonts);
    }

    [[nodiscard]] QStringView rest() const { return m_text.sliced(m_at); }

    QStringView m_text;
    qsizetype m_at = 0;
    QStringList m_open;
    int m_elements = 0;
    int m_span = 1;
    int m_cells = 0;
    int m_images = 0;
    int m_lines = 0;
    ScriptRuns m_scriptRuns;
    qsizetype m_deepest = 0;
    int m_fonts = 0;
    qsizetype m_style = 0;
    int m_rules = 0;
    qsizetype m_tables = 0; ///< How deep in tables it is.
    qsizetype m_textInTables = 0;
    qsizetype m_word = 0;
    int m_digits = 0;
    bool m_isColour = false;
};

} // namespace

bool isWithinMarkupLimits(const QString &html)
{
    if (html.size() > maxMarkupBytes || html.toUtf8().size() > maxMarkupBytes) {
        return false;
    }
    try {
        Scan(html).run();
        return true;
    } catch (const BeyondLimits &) {
        return false;
    }
}

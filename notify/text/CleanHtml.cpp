#include "notify/text/CleanHtml.h"

#include "notify/text/HtmlStyle.h"
#include "notify/text/HtmlThinning.h"
#include "notify/text/HtmlTree.h"
#include "platform/text/ScriptRuns.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <unordered_set>

namespace
{

constexpr int mostElements = 2000;
constexpr int greatestDepth = 60;
constexpr int greatestTableDepth = 4;
constexpr int greatestListDepth = 4;
constexpr int greatestQuoteDepth = 2;
constexpr int mostCells = 150; ///< A cell that spans others counts as all of them.
constexpr int mostColumns = 12;
constexpr int mostTableText = 40'000; ///< One within another is laid out twice as often.
constexpr int elementInTable = 16;    ///< What each counts in that besides its text.
constexpr int mostBoxes = 30;
constexpr qsizetype mostFamilies = 6;
constexpr int mostLines = 2500;
constexpr int mostScriptRuns = 5000; ///< As many as 30 kB of Japanese have.
constexpr int longestWord = 100;
constexpr int longestWordInTable = 30;
constexpr int mostScriptRunsInWord = 50;
constexpr int mostMarks = 32; ///< Of combining marks, one upon the other.
constexpr int usualSize = 12;

constexpr char16_t wordBreak = u'\u200b';

/// From 1, for no difference, to 21, for black on white.
double contrast(const QColor &one, const QColor &other)
{
    const auto luminance = [](const QColor &colour) {
        const auto linear = [](double part) {
            return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
    };
    const double a = luminance(one);
    const double b = luminance(other);
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

bool isReadable(const QColor &text, const QColor &background)
{
    constexpr double least = 2;
    return contrast(text, background) >= least;
}

/// Whether anybody sees that it is another colour.
bool differs(const QColor &one, const QColor &other)
{
    constexpr int least = 48;
    return std::abs(one.red() - other.red()) + std::abs(one.green() - other.green()) +
               std::abs(one.blue() - other.blue()) >
           least;
}

QColor readableOn(const QColor &background)
{
    return isReadable(Qt::black, background) ? QColor(Qt::black) : QColor(Qt::white);
}

QColor linkColourOn(const QColor &background)
{
    // Pure blue cannot be read on a dark ground.
    constexpr QColor onDark(0x6c, 0xb4, 0xff);
    return isReadable(Qt::blue, background) ? QColor(Qt::blue) : onDark;
}

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\n' || c == u'\t' || c == u'\r' || c == u'\f';
}

/// Whether anything of it is seen. Newsletters are full of blanks of all kinds that keep things apart.
bool isInk(QChar c)
{
    constexpr char16_t graphemeJoiner = u'\u034f';
    return !c.isSpace() && c.category() != QChar::Other_Format && c != QChar(graphemeJoiner);
}

int numberOf(const GumboNode &element, const char *attribute, int least, int most)
{
    return std::clamp(HtmlNode::attribute(element, attribute).trimmed().toInt(), least, most);
}

bool isCell(const GumboNode &node)
{
    return HtmlNode::isElement(node) && (node.v.element.tag == GUMBO_TAG_TD || node.v.element.tag == GUMBO_TAG_TH);
}

void forEachCell(const GumboNode &row, const std::function<void(const GumboNode &)> &visit)
{
    HtmlNode::forEachChild(row, [&visit](const GumboNode &child) {
        if (isCell(child)) {
            visit(child);
        }
    });
}

/// The rows of a table, not those of tables within it.
void forEachRow(const GumboNode &table, const std::function<void(const GumboNode &)> &visit)
{
    HtmlNode::forEachChild(table, [&visit](const GumboNode &child) {
        if (!HtmlNode::isElement(child)) {
            return;
        }
        switch (child.v.element.tag) {
        case GUMBO_TAG_TR:
            visit(child);
            break;
        case GUMBO_TAG_THEAD:
        case GUMBO_TAG_TBODY:
        case GUMBO_TAG_TFOOT:
            forEachRow(child, visit);
            break;
        default:
            break;
        }
    });
}

/// What is the same for all of a text, until an element within it has it otherwise.
struct Surroundings {
    QColor text;
    QColor background;
    int size = usualSize;
    int tables = 0;
    int lists = 0;
    int quotes = 0;
    bool isPreformatted = false;
    bool isLink = false;
};

class Writer final
{
public:
    Writer(const HtmlGround &ground, HtmlTables tables)
        : m_keepsTables(tables == HtmlTables::Kept)
    {
        m_ground.text = ground.text;
        m_ground.background = ground.background;
    }

    QString write(const GumboNode &body)
    {
        note(body);
        writeChildren(body, m_ground);
        return m_html;
    }

private:
    /// Notes the elements that have something to show.
    bool note(const GumboNode &element)
    {
        bool has = false;
        HtmlNode::forEachChild(element, [&](const GumboNode &child) {
            if (!HtmlNode::isElement(child)) {
                const QString text = HtmlNode::text(child);
                has = std::ranges::any_of(text, isInk) || has;
                return;
            }
            if (htmlStyle(child, usualSize).isHidden) {
                return;
            }
            const bool isRule = child.v.element.tag == GUMBO_TAG_HR;
            const bool isPicture =
                child.v.element.tag == GUMBO_TAG_IMG && !HtmlNode::attribute(child, "alt").trimmed().isEmpty();
            if (note(child) || isRule || isPicture) {
                m_contentful.insert(&child);
                has = true;
            }
        });
        return has;
    }
    [[nodiscard]] bool hasContent(const GumboNode &element) const { return m_contentful.contains(&element); }

    void writeChildren(const GumboNode &element, const Surroundings &around)
    {
        HtmlNode::forEachChild(element, [&](const GumboNode &child) { writeNode(child, around); });
    }

    void writeNode(const GumboNode &node, const Surroundings &around)
    {
        if (!HtmlNode::isElement(node)) {
            writeText(HtmlNode::text(node), around);
            return;
        }
        const HtmlStyle style = htmlStyle(node, around.size);
        if (style.isHidden) {
            return;
        }
        switch (node.v.element.tag) {
        case GUMBO_TAG_BR:
            writeLineBreak();
            break;
        case GUMBO_TAG_HR:
            writeRule();
            break;
        case GUMBO_TAG_IMG:
            writeText(HtmlNode::attribute(node, "alt").simplified(), around);
            break;
        case GUMBO_TAG_A:
            writeLink(node, style, around);
            break;
        case GUMBO_TAG_TABLE:
            writeTable(node, style, around);
            break;
        case GUMBO_TAG_UL:
        case GUMBO_TAG_OL:
            writeList(node, style, around);
            break;
        case GUMBO_TAG_P:
        case GUMBO_TAG_DIV:
        case GUMBO_TAG_CENTER:
        case GUMBO_TAG_BLOCKQUOTE:
        case GUMBO_TAG_PRE:
        case GUMBO_TAG_H1:
        case GUMBO_TAG_H2:
        case GUMBO_TAG_H3:
        case GUMBO_TAG_H4:
        case GUMBO_TAG_H5:
        case GUMBO_TAG_H6:
        case GUMBO_TAG_DL:
        case GUMBO_TAG_DT:
        case GUMBO_TAG_DD:
        case GUMBO_TAG_LI:
        case GUMBO_TAG_CAPTION:
            writeBlock(node, style, around);
            break;
        default:
            writeSpan(node, style, around);
            break;
        }
    }

    // Elements.

    /// False when there are too many already; then it needs no end.
    [[nodiscard]] bool open(const QString &name, const QString &attributes = {})
    {
        if (m_elements >= mostElements || m_depth >= greatestDepth) {
            return false;
        }
        ++m_elements;
        ++m_depth;
        m_html += u'<' + name + attributes + u'>';
        return true;
    }

    void close(const QString &name)
    {
        --m_depth;
        m_html += QStringLiteral("</") + name + u'>';
        m_word = 0;
    }

    void writeLineBreak()
    {
        if (m_lines < mostLines) {
            ++m_lines;
            m_html += QStringLiteral("<br/>");
        }
        m_word = 0;
    }

    void writeRule()
    {
        if (m_elements < mostElements) {
            ++m_elements;
            m_html += QStringLiteral("<hr/>");
        }
        m_word = 0;
    }

    void writeSpan(const GumboNode &node, HtmlStyle style, const Surroundings &around)
    {
        switch (node.v.element.tag) {
        case GUMBO_TAG_B:
        case GUMBO_TAG_STRONG:
            style.isBold = style.isBold.value_or(true);
            break;
        case GUMBO_TAG_I:
        case GUMBO_TAG_EM:
        case GUMBO_TAG_CITE:
        case GUMBO_TAG_VAR:
        case GUMBO_TAG_DFN:
            style.isItalic = style.isItalic.value_or(true);
            break;
        case GUMBO_TAG_U:
        case GUMBO_TAG_INS:
            style.isUnderlined = style.isUnderlined.value_or(true);
            break;
        case GUMBO_TAG_S:
        case GUMBO_TAG_STRIKE:
        case GUMBO_TAG_DEL:
            style.isStruckOut = style.isStruckOut.value_or(true);
            break;
        case GUMBO_TAG_TT:
        case GUMBO_TAG_CODE:
        case GUMBO_TAG_KBD:
        case GUMBO_TAG_SAMP:
            style.family = QStringLiteral("monospace");
            break;
        case GUMBO_TAG_BIG:
            style.size = style.size > 0 ? style.size : static_cast<int>(around.size * 1.2);
            break;
        case GUMBO_TAG_SMALL:
        case GUMBO_TAG_SUB:
        case GUMBO_TAG_SUP:
            style.size = style.size > 0 ? style.size : std::max(9, static_cast<int>(around.size / 1.2));
            break;
        case GUMBO_TAG_MARK:
            style.background = style.background.isValid() ? style.background : QColor(Qt::yellow);
            break;
        default:
            break;
        }
        Surroundings within = around;
        QString css = characterStyle(style, within);
        if (node.v.element.tag == GUMBO_TAG_SUB || node.v.element.tag == GUMBO_TAG_SUP) {
            css += QStringLiteral("vertical-align:%1;")
                       .arg(node.v.element.tag == GUMBO_TAG_SUB ? QLatin1String("sub") : QLatin1String("super"));
        }
        const QString name = QStringLiteral("span");
        const bool isOpen = !css.isEmpty() && node.v.element.children.length > 0 && open(name, styleAttribute(css));
        writeChildren(node, isOpen ? within : around);
        if (isOpen) {
            --m_depth;
            m_html += QStringLiteral("</span>");
        }
    }

    void writeLink(const GumboNode &node, const HtmlStyle &style, const Surroundings &around)
    {
        const QString address = HtmlNode::attribute(node, "href").trimmed();
        if (address.isEmpty() || around.isLink) {
            writeSpan(node, style, around);
            return;
        }
        Surroundings within = around;
        within.text = linkColourOn(within.background);
        within.isLink = true;
        QString css = characterStyle(style, within);
        if (!css.contains(QLatin1String(";color:")) && !css.startsWith(QLatin1String("color:"))) {
            css += QStringLiteral("color:%1;").arg(within.text.name());
        }
        const QString name = QStringLiteral("a");
        const bool isOpen =
            open(name, QStringLiteral(" href=\"") + address.toHtmlEscaped() + u'"' + styleAttribute(css));
        writeChildren(node, isOpen ? within : around);
        if (isOpen) {
            --m_depth;
            m_html += QStringLiteral("</a>");
        }
    }

    void writeBlock(const GumboNode &node, HtmlStyle style, const Surroundings &around)
    {
        QString name = QStringLiteral("div");
        Surroundings within = around;
        QString css;
        const GumboTag tag = node.v.element.tag;
        switch (tag) {
        case GUMBO_TAG_P:
            name = QStringLiteral("p");
            break;
        case GUMBO_TAG_CENTER:
            style.alignment = style.alignment.isEmpty() ? QStringLiteral("center") : style.alignment;
            break;
        case GUMBO_TAG_BLOCKQUOTE:
            if (around.quotes < greatestQuoteDepth) {
                css = QStringLiteral("margin-left:20px;");
                ++within.quotes;
            }
            break;
        case GUMBO_TAG_DD:
            css = QStringLiteral("margin-left:20px;");
            break;
        case GUMBO_TAG_DT:
            style.isBold = style.isBold.value_or(true);
            break;
        case GUMBO_TAG_PRE:
            css = QStringLiteral("white-space:pre-wrap;");
            style.family = QStringLiteral("monospace");
            within.isPreformatted = true;
            break;
        case GUMBO_TAG_H1:
        case GUMBO_TAG_H2:
        case GUMBO_TAG_H3:
        case GUMBO_TAG_H4:
        case GUMBO_TAG_H5:
        case GUMBO_TAG_H6:
            name = QStringLiteral("p");
            style.isBold = style.isBold.value_or(true);
            style.size = style.size > 0 ? style.size : headingSize(static_cast<int>(tag) - GUMBO_TAG_H1 + 1);
            break;
        default:
            break;
        }
        if (!hasContent(node)) {
            return;
        }
        if (style.background.isValid() && differs(style.background, around.background) &&
            writeBox(node, style, around)) {
            return;
        }
        style.background = QColor();
        css += characterStyle(style, within);
        const bool isOpen = open(name, blockAttributes(style) + styleAttribute(css));
        writeChildren(node, isOpen ? within : around);
        if (isOpen) {
            close(name);
        } else {
            writeLineBreak();
        }
    }

    /// A block with a ground of its own: to Qt only a table has one. False when there are too many already.
    [[nodiscard]] bool writeBox(const GumboNode &node, const HtmlStyle &style, const Surroundings &around)
    {
        if (!m_keepsTables || around.tables >= greatestTableDepth || m_boxes >= mostBoxes || !fits(node, around) ||
            !open(QStringLiteral("table"), QStringLiteral(" width=\"100%\" cellspacing=\"0\" cellpadding=\"6\""))) {
            return false;
        }
        ++m_boxes;
        Surroundings within = around;
        ++within.tables;
        const QString css = characterStyle(style, within);
        m_html += QStringLiteral("<tr><td") + blockAttributes(style) + styleAttribute(css) + u'>';
        writeChildren(node, within);
        m_html += QStringLiteral("</td></tr>");
        close(QStringLiteral("table"));
        return true;
    }

    void writeList(const GumboNode &node, const HtmlStyle &style, const Surroundings &around)
    {
        if (!hasContent(node)) {
            return;
        }
        const bool isOrdered = node.v.element.tag == GUMBO_TAG_OL;
        const QString name = isOrdered ? QStringLiteral("ol") : QStringLiteral("ul");
        QString attributes = blockAttributes(style);
        static const QStringList types = {QStringLiteral("1"),      QStringLiteral("a"),     QStringLiteral("A"),
                                          QStringLiteral("i"),      QStringLiteral("I"),     QStringLiteral("disc"),
                                          QStringLiteral("circle"), QStringLiteral("square")};
        if (const QString type = HtmlNode::attribute(node, "type"); types.contains(type)) {
            attributes += QStringLiteral(" type=\"%1\"").arg(type);
        }
        if (const int start = numberOf(node, "start", 0, 9999); isOrdered && start > 1) {
            attributes += QStringLiteral(" start=\"%1\"").arg(start);
        }
        Surroundings within = around;
        const QString css = characterStyle(style, within);
        const bool isOpen = around.lists < greatestListDepth && open(name, attributes + styleAttribute(css));
        within.lists += isOpen ? 1 : 0;
        HtmlNode::forEachChild(node, [&](const GumboNode &child) {
            const bool isEntry = HtmlNode::isElement(child) && child.v.element.tag == GUMBO_TAG_LI;
            const bool isEntryOpen = isOpen && isEntry && hasContent(child) && open(QStringLiteral("li"));
            if (isEntryOpen) {
                writeChildren(child, within);
                close(QStringLiteral("li"));
            } else {
                writeNode(child, within);
            }
        });
        if (isOpen) {
            close(name);
        }
    }

    // Tables.

    /// Whether there is room for this as one of a table's cells.
    [[nodiscard]] bool fits(const GumboNode &node, const Surroundings &around)
    {
        const qsizetype room = m_tableText >> around.tables;
        const qsizetype length = textLength(node);
        if (length > room) {
            return false;
        }
        m_tableText -= static_cast<int>(length << around.tables);
        return true;
    }

    [[nodiscard]] static qsizetype textLength(const GumboNode &element)
    {
        qsizetype length = 0;
        HtmlNode::forEachChild(element, [&length](const GumboNode &child) {
            length += HtmlNode::isElement(child) ? elementInTable + textLength(child) : HtmlNode::text(child).size();
        });
        return length;
    }

    /// Whether it has rows with more than one cell, and not too many of them.
    [[nodiscard]] bool isGrid(const GumboNode &table) const
    {
        int cells = 0;
        int most = 0;
        forEachRow(table, [&](const GumboNode &row) {
            int filled = 0;
            int columns = 0;
            forEachCell(row, [&](const GumboNode &cell) {
                filled += hasContent(cell) ? 1 : 0;
                columns += numberOf(cell, "colspan", 1, mostCells);
                cells += numberOf(cell, "colspan", 1, mostCells) * numberOf(cell, "rowspan", 1, mostCells);
            });
            most = std::max(most, filled > 1 ? columns : 0);
        });
        return most > 1 && most <= mostColumns && m_cells + cells <= mostCells;
    }

    void writeTable(const GumboNode &table, const HtmlStyle &style, const Surroundings &around)
    {
        if (!hasContent(table)) {
            return;
        }
        HtmlNode::forEachChild(table, [&](const GumboNode &child) {
            if (HtmlNode::isElement(child) && child.v.element.tag == GUMBO_TAG_CAPTION) {
                writeNode(child, around);
            }
        });
        const bool isKept = m_keepsTables && around.tables < greatestTableDepth && isGrid(table) && fits(table, around);
        if (isKept && writeGrid(table, style, around)) {
            return;
        }
        if (style.background.isValid() && differs(style.background, around.background) &&
            writeBox(table, style, around)) {
            return;
        }
        Surroundings within = around;
        HtmlStyle characters = style;
        characters.background = QColor();
        const QString css = characterStyle(characters, within);
        const bool isOpen = (!css.isEmpty() || !style.direction.isEmpty()) &&
                            open(QStringLiteral("div"), blockAttributes(directionOf(style)) + styleAttribute(css));
        writeRowsAsBlocks(table, isOpen ? within : around);
        if (isOpen) {
            close(QStringLiteral("div"));
        }
    }

    /// An alignment of the table's own is where it lies, and not its text.
    [[nodiscard]] static HtmlStyle directionOf(const HtmlStyle &style)
    {
        HtmlStyle direction;
        direction.direction = style.direction;
        return direction;
    }

    void writeRowsAsBlocks(const GumboNode &table, const Surroundings &around)
    {
        forEachRow(table, [&](const GumboNode &row) {
            forEachCell(row, [&](const GumboNode &cell) {
                HtmlStyle style = htmlStyle(cell, around.size);
                if (!style.isHidden) {
                    const HtmlStyle ofRow = htmlStyle(row, around.size);
                    style.background = style.background.isValid() ? style.background : ofRow.background;
                    writeBlock(cell, style, around);
                }
            });
        });
    }

    [[nodiscard]] bool writeGrid(const GumboNode &table, const HtmlStyle &style, const Surroundings &around)
    {
        const bool hasBorder = style.border.isValid() || hasBorderedCells(table) || numberOf(table, "border", 0, 1) > 0;
        const QColor border = style.border.isValid() ? style.border : QColor(Qt::gray);
        Surroundings within = around;
        QString css = characterStyle(style, within);
        if (hasBorder) {
            css += QStringLiteral("border-collapse:collapse;border-style:solid;border-color:%1;").arg(border.name());
        }
        const bool isWide = !HtmlNode::attribute(table, "width").isEmpty() || style.widthPercent > 0;
        const int padding = numberOf(table, "cellpadding", 0, 8);
        const QString attributes =
            QStringLiteral("%1 border=\"%2\" cellspacing=\"%3\" cellpadding=\"%4\"")
                .arg(isWide ? QStringLiteral(" width=\"100%\"") : QString(), QString::number(hasBorder ? 1 : 0),
                     QString::number(hasBorder ? 0 : numberOf(table, "cellspacing", 0, 4)),
                     QString::number(padding > 0 ? padding : 3));
        if (!open(QStringLiteral("table"), attributes + blockAttributes(directionOf(style)) + styleAttribute(css))) {
            return false;
        }
        ++within.tables;
        forEachRow(table, [&](const GumboNode &row) {
            if (hasContent(row)) {
                writeRow(row, within);
            }
        });
        close(QStringLiteral("table"));
        return true;
    }

    [[nodiscard]] static bool hasBorderedCells(const GumboNode &table)
    {
        bool has = false;
        forEachRow(table, [&has](const GumboNode &row) {
            forEachCell(row,
                        [&has](const GumboNode &cell) { has = has || htmlStyle(cell, usualSize).border.isValid(); });
        });
        return has;
    }

    void writeRow(const GumboNode &row, const Surroundings &around)
    {
        const HtmlStyle ofRow = htmlStyle(row, around.size);
        Surroundings inRow = around;
        const QString rowCss = characterStyle(ofRow, inRow);
        m_html += QStringLiteral("<tr>");
        forEachCell(row, [&](const GumboNode &cell) {
            HtmlStyle style = htmlStyle(cell, inRow.size);
            if (cell.v.element.tag == GUMBO_TAG_TH) {
                style.isBold = style.isBold.value_or(true);
            }
            style.alignment = style.alignment.isEmpty() ? ofRow.alignment : style.alignment;
            Surroundings within = inRow;
            const QString css = rowCss + characterStyle(style, within);
            QString attributes = blockAttributes(style);
            const int columns = numberOf(cell, "colspan", 1, mostColumns);
            const int rows = numberOf(cell, "rowspan", 1, mostCells);
            m_cells += columns * rows;
            attributes += columns > 1 ? QStringLiteral(" colspan=\"%1\"").arg(columns) : QString();
            attributes += rows > 1 ? QStringLiteral(" rowspan=\"%1\"").arg(rows) : QString();
            attributes += style.widthPercent > 0 ? QStringLiteral(" width=\"%1%\"").arg(style.widthPercent) : QString();
            const QString vertical = HtmlNode::attribute(cell, "valign").toLower();
            if (vertical == u"top" || vertical == u"middle" || vertical == u"bottom") {
                attributes += QStringLiteral(" valign=\"%1\"").arg(vertical);
            }
            m_html += QStringLiteral("<td") + attributes + styleAttribute(css) + u'>';
            ++m_elements;
            m_word = 0;
            if (!style.isHidden) {
                writeChildren(cell, within);
            }
            m_html += QStringLiteral("</td>");
            m_word = 0;
        });
        m_html += QStringLiteral("</tr>");
    }

    // Attributes.

    [[nodiscard]] static QString styleAttribute(const QString &css)
    {
        return css.isEmpty() ? QString() : QStringLiteral(" style=\"") + css + u'"';
    }

    [[nodiscard]] static QString blockAttributes(const HtmlStyle &style)
    {
        QString attributes;
        if (!style.alignment.isEmpty()) {
            attributes += QStringLiteral(" align=\"%1\"").arg(style.alignment);
        }
        if (!style.direction.isEmpty()) {
            attributes += QStringLiteral(" dir=\"%1\"").arg(style.direction);
        }
        return attributes;
    }

    /// What an element writes of its style. The surroundings become those within it.
    [[nodiscard]] QString characterStyle(const HtmlStyle &style, Surroundings &within)
    {
        QString css;
        if (style.background.isValid() && differs(style.background, within.background)) {
            within.background = style.background;
            css += QStringLiteral("background-color:%1;").arg(style.background.name());
        }
        QColor text = within.text;
        if (style.colour.isValid() && isReadable(style.colour, within.background)) {
            text = style.colour;
        } else if (!isReadable(text, within.background)) {
            text = readableOn(within.background);
        }
        if (text != within.text) {
            within.text = text;
            css += QStringLiteral("color:%1;").arg(text.name());
        }
        if (style.size > 0 && style.size != within.size) {
            within.size = style.size;
            css += QStringLiteral("font-size:%1px;").arg(style.size);
        }
        if (!style.family.isEmpty() && isKept(style.family)) {
            css += QStringLiteral("font-family:%1;").arg(style.family);
        }
        const auto add = [&css](const std::optional<bool> &wanted, const char *yes, const char *no) {
            css += wanted ? QLatin1String(*wanted ? yes : no) : QLatin1String();
        };
        add(style.isBold, "font-weight:bold;", "font-weight:normal;");
        add(style.isItalic, "font-style:italic;", "font-style:normal;");
        if (style.isUnderlined.value_or(false) || style.isStruckOut.value_or(false)) {
            css += QStringLiteral("text-decoration:%1 %2;")
                       .arg(style.isUnderlined.value_or(false) ? QLatin1String("underline") : QLatin1String(),
                            style.isStruckOut.value_or(false) ? QLatin1String("line-through") : QLatin1String());
        } else if (style.isUnderlined.has_value()) {
            css += QStringLiteral("text-decoration:none;");
        }
        return css;
    }

    /// To look for a family takes long.
    [[nodiscard]] bool isKept(const QString &family)
    {
        if (!m_families.contains(family) && m_families.size() < mostFamilies) {
            m_families.append(family);
        }
        return m_families.contains(family);
    }

    // Text.

    void writeText(const QString &text, const Surroundings &around)
    {
        const int longest = around.tables > 0 ? longestWordInTable : longestWord;
        for (qsizetype i = 0; i < text.size(); ++i) {
            const bool isPair = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
            const char32_t c = isPair ? QChar::surrogateToUcs4(text[i], text[i + 1]) : text[i].unicode();
            i += isPair ? 1 : 0;
            if (isBlank(QChar(static_cast<char16_t>(c))) && c < 0x80) {
                writeBlank(c, around);
            } else if (!isForbidden(c)) {
                writeCharacter(c, longest);
            }
        }
    }

    void writeBlank(char32_t c, const Surroundings &around)
    {
        m_word = 0;
        m_scriptRunsInWord = 0;
        m_marks = 0;
        if (!around.isPreformatted) {
            if (!m_html.endsWith(u' ')) {
                m_html += u' ';
            }
        } else if (c == U'\n') {
            writeLineBreak();
        } else if (c == U'\t') {
            m_html += QStringLiteral("    ");
        } else {
            m_html += u' ';
        }
    }

    void writeCharacter(char32_t c, int longest)
    {
        const bool isMark = QChar::isMark(c) || QChar::category(c) == QChar::Other_Format;
        m_marks = isMark ? m_marks + 1 : 0;
        if (m_marks > mostMarks || m_isCut) {
            return;
        }
        if (m_scriptRuns.add(c)) {
            ++m_scriptRunsInWord;
        }
        if (m_scriptRuns.count() > mostScriptRuns) {
            m_isCut = true;
            m_html += QChar(u'\u2026');
            return;
        }
        if (!isMark && (++m_word > longest || m_scriptRunsInWord > mostScriptRunsInWord)) {
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

    /// What Qt's documents use as marks of their own, or cannot hold.
    [[nodiscard]] static bool isForbidden(char32_t c)
    {
        constexpr char32_t firstPrintable = 0x20;
        return c < firstPrintable || QChar::isSurrogate(c) || QChar::isNonCharacter(c) ||
               c == QChar::ObjectReplacementCharacter || c == QChar::ParagraphSeparator || c == QChar::LineSeparator;
    }

    const bool m_keepsTables;
    Surroundings m_ground;
    std::unordered_set<const GumboNode *> m_contentful;
    QString m_html;
    QStringList m_families;
    ScriptRuns m_scriptRuns;
    int m_elements = 0;
    int m_depth = 0;
    int m_cells = 0;
    int m_boxes = 0;
    int m_tableText = mostTableText;
    int m_lines = 0;
    int m_word = 0; ///< Characters since the last place where a line can be broken.
    int m_scriptRunsInWord = 0;
    int m_marks = 0;
    bool m_isCut = false;
};

} // namespace

QString cleanHtml(const QString &html, const HtmlGround &ground, HtmlTables tables)
{
    const HtmlTree tree(thinnedHtml(html));
    const GumboNode *const body = tree.body();
    return body ? Writer(ground, tables).write(*body) : QString();
}

#include "notify/text/CleanHtml.h"

#include "notify/text/HtmlContent.h"
#include "notify/text/HtmlStyle.h"
#include "notify/text/HtmlStyleWriter.h"
#include "notify/text/HtmlTable.h"
#include "notify/text/HtmlText.h"
#include "notify/text/HtmlThinning.h"
#include "notify/text/HtmlTree.h"
#include "notify/text/OpenableLink.h"
#include "notify/text/ReadableColours.h"

#include <algorithm>
#include <unordered_set>

namespace
{

constexpr int maxElements = 2000;
constexpr int maxDepth = 60;
constexpr int maxTableDepth = 4;
constexpr int maxListDepth = 4;
constexpr int maxQuoteDepth = 2;
constexpr int maxTableText = 40'000; ///< One within another is laid out twice as often.
constexpr int maxBoxes = 30;

class Writer final
{
public:
    Writer(const GumboNode &body, const HtmlGround &ground, HtmlTables tables)
        : m_keepsTables(tables == HtmlTables::Kept)
        , m_contentful(elementsWithContent(body))
    {
        HtmlSurroundings around;
        around.text = ground.text;
        around.background = ground.background;
        writeChildren(body, around.within(htmlStyle(body, around.size)));
    }

    [[nodiscard]] const QString &html() const { return m_out.html(); }

private:
    [[nodiscard]] bool hasContent(const GumboNode &element) const { return m_contentful.contains(&element); }

    void writeChildren(const GumboNode &element, const HtmlSurroundings &around)
    {
        HtmlNode::forEachChild(element, [&](const GumboNode &child) { writeNode(child, around); });
    }

    void writeNode(const GumboNode &node, const HtmlSurroundings &outside)
    {
        if (m_out.isCut()) {
            return; // Else empty paragraphs would come behind the ellipsis.
        }
        if (!HtmlNode::isElement(node)) {
            writeText(HtmlNode::text(node), outside);
            return;
        }
        const HtmlStyle style = htmlStyle(node, outside.size);
        if (style.isHidden) {
            return;
        }
        const HtmlSurroundings around = outside.within(style);
        switch (node.v.element.tag) {
        case GUMBO_TAG_BR:
            m_out.writeLineBreak();
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
        default:
            HtmlNode::isBlock(node) ? writeBlock(node, style, around) : writeSpan(node, style, around);
            break;
        }
    }

    void writeText(const QString &text, const HtmlSurroundings &around)
    {
        if (around.isSizeless) {
            return;
        }
        m_out.writeText(text, around.isPreformatted ? HtmlText::Blanks::Kept : HtmlText::Blanks::Folded,
                        around.tables > 0 ? HtmlText::Words::InTable : HtmlText::Words::Usual);
    }

    /// False when there are too many already; then it needs no end.
    [[nodiscard]] bool open(const QString &name, const QString &attributes = {})
    {
        if (m_elements >= maxElements || m_depth >= maxDepth) {
            return false;
        }
        ++m_elements;
        ++m_depth;
        m_out.writeTag(u'<' + name + attributes + u'>');
        return true;
    }

    void close(const QString &name)
    {
        --m_depth;
        m_out.writeTag(QStringLiteral("</") + name + u'>');
    }

    void closeBlock(const QString &name)
    {
        close(name);
        m_out.endWord();
    }

    void writeRule()
    {
        if (m_elements < maxElements) {
            ++m_elements;
            m_out.writeTag(QStringLiteral("<hr/>"));
        }
        m_out.endWord();
    }

    void writeSpan(const GumboNode &node, const HtmlStyle &style, const HtmlSurroundings &around)
    {
        HtmlSurroundings within = around;
        QString css = m_styles.characterStyle(style, within);
        if (node.v.element.tag == GUMBO_TAG_SUB) {
            css += QStringLiteral("vertical-align:sub;");
        } else if (node.v.element.tag == GUMBO_TAG_SUP) {
            css += QStringLiteral("vertical-align:super;");
        }
        const QString name = QStringLiteral("span");
        const bool isOpen =
            !css.isEmpty() && node.v.element.children.length > 0 && open(name, HtmlStyleWriter::styleAttribute(css));
        writeChildren(node, isOpen ? within : around);
        if (isOpen) {
            close(name);
        }
    }

    void writeLink(const GumboNode &node, const HtmlStyle &style, const HtmlSurroundings &around)
    {
        const QString address = HtmlNode::attribute(node, "href").trimmed();
        if (around.isLink || !isOpenableLink(QUrl(address))) {
            writeSpan(node, style, around);
            return;
        }
        HtmlSurroundings within = around;
        within.isLink = true;
        HtmlStyle coloured = style;
        const QColor ground = style.background.isValid() ? style.background : around.background;
        if (!style.colour.isValid() || !isReadable(style.colour, ground)) {
            coloured.colour = linkColourOn(ground);
        }
        within.text = QColor(); // The colour is always written, or Qt takes one of its own.
        const QString css = m_styles.characterStyle(coloured, within);
        const QString name = QStringLiteral("a");
        const bool isOpen = open(name, QStringLiteral(" href=\"") + HtmlText::attributeValue(address) + u'"' +
                                           HtmlStyleWriter::styleAttribute(css));
        writeChildren(node, isOpen ? within : around);
        if (isOpen) {
            close(name);
        }
    }

    void writeBlock(const GumboNode &node, HtmlStyle style, const HtmlSurroundings &around)
    {
        if (!hasContent(node)) {
            return;
        }
        if (hasGround(style, around) && writeBox(node, style, around)) {
            return;
        }
        style.background = QColor();
        HtmlSurroundings within = around;
        QString css;
        const GumboTag tag = node.v.element.tag;
        if ((tag == GUMBO_TAG_BLOCKQUOTE || tag == GUMBO_TAG_DD) && around.quotes < maxQuoteDepth) {
            ++within.quotes;
            css = QStringLiteral("margin-left:20px;");
        } else if (tag == GUMBO_TAG_PRE) {
            within.isPreformatted = true;
            css = QStringLiteral("white-space:pre-wrap;");
        }
        const bool isParagraph = tag == GUMBO_TAG_P || (tag >= GUMBO_TAG_H1 && tag <= GUMBO_TAG_H6);
        const QString name = isParagraph ? QStringLiteral("p") : QStringLiteral("div");
        css += m_styles.characterStyle(style, within);
        const bool isOpen = open(name, HtmlStyleWriter::blockAttributes(style) + HtmlStyleWriter::styleAttribute(css));
        writeChildren(node, isOpen ? within : around);
        if (isOpen) {
            closeBlock(name);
        } else {
            m_out.writeLineBreak();
        }
    }

    [[nodiscard]] static bool hasGround(const HtmlStyle &style, const HtmlSurroundings &around)
    {
        return style.background.isValid() && isSeenToDiffer(style.background, around.background);
    }

    /// A block with a ground of its own: to Qt only a table has one. False when there are too many already.
    [[nodiscard]] bool writeBox(const GumboNode &node, const HtmlStyle &style, const HtmlSurroundings &around)
    {
        const QString name = QStringLiteral("table");
        if (!m_keepsTables || around.tables >= maxTableDepth || m_boxes >= maxBoxes || !takeRoom(node, around) ||
            !open(name, QStringLiteral(" width=\"100%\" cellspacing=\"0\" cellpadding=\"6\""))) {
            return false;
        }
        ++m_boxes;
        HtmlSurroundings within = around;
        ++within.tables;
        const QString css = m_styles.characterStyle(style, within);
        m_out.writeTag(QStringLiteral("<tr><td") + HtmlStyleWriter::blockAttributes(style) +
                       HtmlStyleWriter::styleAttribute(css) + u'>');
        if (node.v.element.tag == GUMBO_TAG_TABLE) {
            writeRowsAsBlocks(node, within);
        } else {
            writeChildren(node, within);
        }
        m_out.writeTag(QStringLiteral("</td></tr>"));
        closeBlock(name);
        return true;
    }

    void writeList(const GumboNode &node, const HtmlStyle &style, const HtmlSurroundings &around)
    {
        if (!hasContent(node)) {
            return;
        }
        const bool isOrdered = node.v.element.tag == GUMBO_TAG_OL;
        const QString name = isOrdered ? QStringLiteral("ol") : QStringLiteral("ul");
        QString attributes = HtmlStyleWriter::blockAttributes(style);
        const QString type = HtmlNode::attribute(node, "type");
        if (QStringLiteral(" 1 a A i I disc circle square ").contains(u' ' + type + u' ') && !type.isEmpty()) {
            attributes += QStringLiteral(" type=\"%1\"").arg(type);
        }
        if (const int start = HtmlTable::number(node, "start", 0, 9999); isOrdered && start > 1) {
            attributes += QStringLiteral(" start=\"%1\"").arg(start);
        }
        HtmlSurroundings within = around;
        attributes += HtmlStyleWriter::styleAttribute(m_styles.characterStyle(style, within));
        const bool isOpen = around.lists < maxListDepth && open(name, attributes);
        within.lists += isOpen ? 1 : 0;
        HtmlNode::forEachChild(node, [&](const GumboNode &child) {
            const bool isEntry = HtmlNode::isElement(child) && child.v.element.tag == GUMBO_TAG_LI;
            if (isOpen && isEntry && !m_out.isCut() && hasContent(child) && open(QStringLiteral("li"))) {
                writeChildren(child, within);
                closeBlock(QStringLiteral("li"));
            } else {
                writeNode(child, within);
            }
        });
        if (isOpen) {
            closeBlock(name);
        }
    }

    /// False when there is no room for this as one of a table's cells, or as the table.
    [[nodiscard]] bool takeRoom(const GumboNode &node, const HtmlSurroundings &around)
    {
        const qsizetype weight = HtmlTable::weight(node) << around.tables;
        if (weight > m_tableText) {
            return false;
        }
        m_tableText -= weight;
        return true;
    }

    void writeTable(const GumboNode &table, const HtmlStyle &style, const HtmlSurroundings &around)
    {
        if (!hasContent(table)) {
            return;
        }
        HtmlNode::forEachChild(table, [&](const GumboNode &child) {
            if (HtmlNode::isElement(child) && child.v.element.tag == GUMBO_TAG_CAPTION) {
                writeNode(child, around);
            }
        });
        const auto cells = HtmlTable::cellsOfGrid(table, [this](const GumboNode &cell) { return hasContent(cell); });
        const bool isKept = m_keepsTables && around.tables < maxTableDepth && cells &&
                            m_cells + *cells <= HtmlTable::maxCells && takeRoom(table, around);
        if (isKept && writeGrid(table, style, around)) {
            m_cells += *cells;
        } else if (!hasGround(style, around) || !writeBox(table, style, around)) {
            writeDissolved(table, style, around);
        }
    }

    void writeDissolved(const GumboNode &table, HtmlStyle style, const HtmlSurroundings &around)
    {
        style.background = QColor();
        style.alignment.clear(); // That is where the table lies, and not its text.
        HtmlSurroundings within = around;
        const QString attributes = HtmlStyleWriter::blockAttributes(style) +
                                   HtmlStyleWriter::styleAttribute(m_styles.characterStyle(style, within));
        const bool isOpen = !attributes.isEmpty() && open(QStringLiteral("div"), attributes);
        writeRowsAsBlocks(table, isOpen ? within : around);
        if (isOpen) {
            closeBlock(QStringLiteral("div"));
        }
    }

    void writeRowsAsBlocks(const GumboNode &table, const HtmlSurroundings &around)
    {
        HtmlTable::forEachRow(table, [&](const GumboNode &row) {
            const QColor ground = htmlStyle(row, around.size).background;
            HtmlTable::forEachCell(row, [&](const GumboNode &cell) {
                HtmlStyle style = htmlStyle(cell, around.size);
                style.background = style.background.isValid() ? style.background : ground;
                if (!style.isHidden && !m_out.isCut()) {
                    writeBlock(cell, style, around.within(style));
                }
            });
        });
    }

    [[nodiscard]] bool writeGrid(const GumboNode &table, HtmlStyle style, const HtmlSurroundings &around)
    {
        style.alignment.clear();
        const bool hasBorder = style.border.isValid() || HtmlTable::hasBorderedCells(table) ||
                               HtmlTable::number(table, "border", 0, 1) > 0;
        HtmlSurroundings within = around;
        QString css = m_styles.characterStyle(style, within);
        if (hasBorder) {
            const QColor border = style.border.isValid() ? style.border : QColor(Qt::gray);
            css += QStringLiteral("border-collapse:collapse;border-style:solid;border-color:%1;").arg(border.name());
        }
        const bool isWide = !HtmlNode::attribute(table, "width").isEmpty() || style.widthPercent > 0;
        const QString attributes = HtmlTable::gridAttributes(table, hasBorder, isWide);
        const QString name = QStringLiteral("table");
        if (!open(name, attributes + HtmlStyleWriter::blockAttributes(style) + HtmlStyleWriter::styleAttribute(css))) {
            return false;
        }
        ++within.tables;
        HtmlTable::forEachRow(table, [&](const GumboNode &row) {
            if (!m_out.isCut() && hasContent(row)) {
                writeRow(row, within);
            }
        });
        closeBlock(name);
        return true;
    }

    void writeRow(const GumboNode &row, const HtmlSurroundings &around)
    {
        const HtmlStyle ofRow = htmlStyle(row, around.size);
        HtmlSurroundings inRow = around;
        const QString rowCss = m_styles.characterStyle(ofRow, inRow);
        m_out.writeTag(QStringLiteral("<tr>"));
        HtmlTable::forEachCell(row, [&](const GumboNode &cell) {
            HtmlStyle style = htmlStyle(cell, inRow.size);
            style.alignment = style.alignment.isEmpty() ? ofRow.alignment : style.alignment;
            HtmlSurroundings within = inRow;
            const QString css = rowCss + m_styles.characterStyle(style, within);
            m_out.writeTag(QStringLiteral("<td") + HtmlStyleWriter::blockAttributes(style) +
                           HtmlTable::cellAttributes(cell, style.widthPercent) + HtmlStyleWriter::styleAttribute(css) +
                           u'>');
            m_out.endWord();
            if (!style.isHidden) {
                writeChildren(cell, within.within(style));
            }
            m_out.writeTag(QStringLiteral("</td>"));
            m_out.endWord();
        });
        m_out.writeTag(QStringLiteral("</tr>"));
    }

    const bool m_keepsTables;
    const std::unordered_set<const GumboNode *> m_contentful;
    HtmlStyleWriter m_styles;
    HtmlText m_out;
    int m_elements = 0;
    int m_depth = 0;
    int m_cells = 0;
    int m_boxes = 0;
    qsizetype m_tableText = maxTableText;
};

} // namespace

QString cleanHtml(const QString &html, const HtmlGround &ground, HtmlTables tables)
{
    const HtmlTree tree(thinnedHtml(html));
    const GumboNode *const body = tree.body();
    return body ? Writer(*body, ground, tables).html() : QString();
}

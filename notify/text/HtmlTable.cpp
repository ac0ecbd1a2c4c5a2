#include "notify/text/HtmlTable.h"

#include "notify/text/HtmlStyle.h"
#include "notify/text/HtmlTree.h"

#include <algorithm>

namespace
{

constexpr int elementWeight = 16;

bool isCell(const GumboNode &node)
{
    return HtmlNode::isElement(node) && (node.v.element.tag == GUMBO_TAG_TD || node.v.element.tag == GUMBO_TAG_TH);
}

} // namespace

namespace HtmlTable
{

void forEachCell(const GumboNode &row, const std::function<void(const GumboNode &)> &visit)
{
    HtmlNode::forEachChild(row, [&visit](const GumboNode &child) {
        if (isCell(child)) {
            visit(child);
        }
    });
}

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

int number(const GumboNode &element, const char *attribute, int min, int max)
{
    return std::clamp(HtmlNode::attribute(element, attribute).trimmed().toInt(), min, max);
}

int columns(const GumboNode &cell)
{
    return number(cell, "colspan", 1, maxCells);
}

int rows(const GumboNode &cell)
{
    return number(cell, "rowspan", 1, maxCells);
}

QString gridAttributes(const GumboNode &table, bool hasBorder, bool isWide)
{
    constexpr int usualPadding = 3;
    const int padding = number(table, "cellpadding", 0, 8);
    return QStringLiteral("%1 border=\"%2\" cellspacing=\"%3\" cellpadding=\"%4\"")
        .arg(isWide ? QStringLiteral(" width=\"100%\"") : QString())
        .arg(hasBorder ? 1 : 0)
        .arg(hasBorder ? 0 : number(table, "cellspacing", 0, 4))
        .arg(padding > 0 ? padding : usualPadding);
}

QString cellAttributes(const GumboNode &cell, int widthPercent)
{
    QString attributes;
    const auto add = [&attributes](const char *name, int value, const char *unit) {
        attributes += QStringLiteral(" %1=\"%2%3\"").arg(QLatin1String(name)).arg(value).arg(QLatin1String(unit));
    };
    if (columns(cell) > 1) {
        add("colspan", columns(cell), "");
    }
    if (rows(cell) > 1) {
        add("rowspan", rows(cell), "");
    }
    if (widthPercent > 0) {
        add("width", widthPercent, "%");
    }
    const QString vertical = HtmlNode::attribute(cell, "valign").toLower();
    if (vertical == u"top" || vertical == u"middle" || vertical == u"bottom") {
        attributes += QStringLiteral(" valign=\"%1\"").arg(vertical);
    }
    return attributes;
}

std::optional<int> cellsOfGrid(const GumboNode &table, const std::function<bool(const GumboNode &cell)> &hasContent)
{
    int cells = 0;
    int widest = 0;
    forEachRow(table, [&](const GumboNode &row) {
        int filled = 0;
        int width = 0;
        forEachCell(row, [&](const GumboNode &cell) {
            filled += hasContent(cell) ? 1 : 0;
            width += columns(cell);
            cells += columns(cell) * rows(cell);
        });
        widest = std::max(widest, filled > 1 ? width : 0);
    });
    return widest > 1 && widest <= maxColumns && cells <= maxCells ? std::optional(cells) : std::nullopt;
}

bool hasBorderedCells(const GumboNode &table)
{
    bool has = false;
    forEachRow(table, [&has](const GumboNode &row) {
        forEachCell(row, [&has](const GumboNode &cell) { has = has || htmlStyle(cell, 1).border.isValid(); });
    });
    return has;
}

qsizetype weight(const GumboNode &element)
{
    qsizetype sum = 0;
    HtmlNode::forEachChild(element, [&sum](const GumboNode &child) {
        sum += HtmlNode::isElement(child) ? elementWeight + weight(child) : HtmlNode::text(child).size();
    });
    return sum;
}

} // namespace HtmlTable

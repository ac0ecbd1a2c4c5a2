#pragma once

#include <QString>

#include <functional>
#include <gumbo.h>
#include <optional>

/// Tables of HTML as HtmlTree reads them. Reentrant.
namespace HtmlTable
{

/// The rows of a table, not those of tables within it.
void forEachRow(const GumboNode &table, const std::function<void(const GumboNode &row)> &visit);
void forEachCell(const GumboNode &row, const std::function<void(const GumboNode &cell)> &visit);

/// A number in an attribute, brought between `min` and `max`.
[[nodiscard]] int number(const GumboNode &element, const char *attribute, int min, int max);

/// How wide and how high a cell is: in columns and rows, as near as that may be.
[[nodiscard]] int columns(const GumboNode &cell);
[[nodiscard]] int rows(const GumboNode &cell);

/// What a table keeps of its own, but for its style.
[[nodiscard]] QString gridAttributes(const GumboNode &table, bool hasBorder, bool isWide);

/// What a cell keeps of its place: how far it reaches, its width and where in it the text lies.
[[nodiscard]] QString cellAttributes(const GumboNode &cell, int widthPercent);

/// Whether it has rows with more than one cell that `hasContent`: any other only frames its text, or moves it about.
/// Nothing when it has none, or too many; else as how many cells it counts.
[[nodiscard]] std::optional<int> cellsOfGrid(const GumboNode &table,
                                             const std::function<bool(const GumboNode &cell)> &hasContent);

[[nodiscard]] bool hasBorderedCells(const GumboNode &table);

/// What the text within it takes to lay out: its length, and as much as some characters take for each element.
[[nodiscard]] qsizetype weight(const GumboNode &element);

/// More columns than that no table in a pop-up has.
inline constexpr int maxColumns = 12;
/// A cell that spans others counts as all of them.
inline constexpr int maxCells = 150;

} // namespace HtmlTable

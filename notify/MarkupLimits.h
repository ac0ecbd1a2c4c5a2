#pragma once

#include <QString>

/// Whether Qt can be given this HTML without stopping the agent for longer than a user notices. It lays some texts out
/// in a time that grows with the square of their length, or fourfold with every table within another, and others it
/// overflows the stack with; the text comes from outside.
///
/// At most 64 kB, 2,000 elements, elements 100 and tables 4 deep, 100 rows or columns to a cell, 20 fonts asked for by
/// name, 4 kB of style sheets, no word longer than 1,000 characters and no length of more than four digits. Nor is
/// anything allowed on whose structure two readers could disagree: a quotation mark within a word of a tag, or an angle
/// bracket in quotation marks. Takes time in proportion to the text. Reentrant.
[[nodiscard]] bool isWithinMarkupLimits(const QString &html);

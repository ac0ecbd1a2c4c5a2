#pragma once

#include <QString>

/// What is longer is never within the limits.
constexpr qsizetype maxMarkupBytes = 65'536;

/// Whether Qt can be given this HTML without stopping the agent for longer than a user notices. It lays some texts out
/// in a time that grows with the square of their length, or fourfold with every table within another, and others it
/// overflows the stack with; the text comes from outside.
///
/// At most 64 kB, 8 kB of it in tables; 500 elements, elements 100 and tables 4 deep; 150 cells with all that they
/// span; 4,000 lines; 8,000 changes of script or direction; 50 images; 20 fonts asked for; 4 kB of style sheets, and
/// with them few rules where there are many elements, and those 12 deep; no word longer than 250 characters and no
/// length of more than four digits. Measured: what passes is laid out in less than 100 ms. Nor is anything allowed on
/// whose structure two readers could disagree: a quotation mark within a word of a tag, or an angle bracket in
/// quotation marks. Takes time in proportion to the text. Reentrant. It must be given the very text that Qt is: a
/// character dropped later may have been the one that broke up a name.
[[nodiscard]] bool isWithinMarkupLimits(const QString &html);

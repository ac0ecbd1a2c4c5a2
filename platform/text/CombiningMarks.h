#pragma once

#include <QString>

/// So many combining marks, joiners and other characters that only form what is around them may follow one another. No
/// writing piles up as many.
inline constexpr int maxMarks = 32;

/// The text without the marks that follow `maxMarks` others at once. To lay out a hundred thousand of them, which need
/// no room, takes Qt seconds. Reentrant.
[[nodiscard]] QString withoutPiledUpMarks(const QString &text);

#pragma once

#include <QString>

/// The text without every combining mark that follows 32 others at once. No writing piles up as many, and laying out a
/// hundred thousand of them on one letter takes Qt seconds. Reentrant.
[[nodiscard]] QString withoutPiledUpMarks(const QString &text);

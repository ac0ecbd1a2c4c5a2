#pragma once

#include <QString>

/// The text without every combining mark, or joiner or other character that only forms what is around it, that follows
/// 32 of these at once. No writing piles up as many, and laying out a hundred thousand of them, which take no room,
/// takes Qt seconds. Reentrant.
[[nodiscard]] QString withoutPiledUpMarks(const QString &text);

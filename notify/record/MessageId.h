#pragma once

#include "platform/data/TextBeginning.h"

#include <QString>

/// Ids are compared as numbers, of which the highest has 19 digits, and as texts. The last one that came goes into the
/// settings and into the feed's address: as an argument of a program that may have 128 kB, and servers refuse requests
/// with more than 8. A character may take nine bytes there.
inline constexpr qsizetype maxIdLength = 256;

/// As much of an id as is kept. Nil stays nil. Reentrant.
[[nodiscard]] inline QString keptId(const QString &id)
{
    return id.size() <= maxIdLength ? id : beginningOf(id, maxIdLength).toString();
}

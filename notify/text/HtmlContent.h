#pragma once

#include <gumbo.h>
#include <unordered_set>

/// The elements below this one that have something to show: characters that are seen, a rule, a picture with an
/// alternative text. Newsletters are full of blanks of all kinds that keep things apart. Takes time in proportion to
/// their number. Reentrant.
[[nodiscard]] std::unordered_set<const GumboNode *> elementsWithContent(const GumboNode &element);

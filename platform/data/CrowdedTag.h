#pragma once

#include <QStringView>

/// How many attributes a tag may have that is read.
inline constexpr int maxXmlAttributes = 64;

/// How much of an XML document comes before the first tag with more than `maxAttributes` attributes; its whole size
/// when there is none. Qt's reader compares each attribute of a tag with every other one: a hundred thousand of them,
/// in half a megabyte, would stop the agent for a quarter of a minute.
///
/// What looks like a tag within a comment or a CDATA section is judged, too. Reentrant.
[[nodiscard]] qsizetype lengthBeforeCrowdedTag(QStringView xml, int maxAttributes);

#pragma once

#include <QColor>

/// Colours of texts and of what they stand on. Reentrant.

[[nodiscard]] bool isReadable(const QColor &text, const QColor &background);

/// Whether anybody sees that it is another colour.
[[nodiscard]] bool isSeenToDiffer(const QColor &one, const QColor &other);

/// Black or white.
[[nodiscard]] QColor readableOn(const QColor &background);

/// That of links.
[[nodiscard]] QColor linkColourOn(const QColor &background);

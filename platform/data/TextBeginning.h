#pragma once

#include <QStringView>

#include <algorithm>

/// The text's first `maxLength` UTF-16 units, or one less where that would leave half a surrogate pair. `maxLength` is
/// not negative. Reentrant.
[[nodiscard]] inline QStringView beginningOf(QStringView text, qsizetype maxLength)
{
    qsizetype length = std::min(text.size(), maxLength);
    if (length > 0 && length < text.size() && text[length - 1].isHighSurrogate() && text[length].isLowSurrogate()) {
        --length;
    }
    return text.first(length);
}

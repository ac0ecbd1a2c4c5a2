#pragma once

#include <QStringView>

/// Whether the letters of a text have to be formed and joined by the rules of its script: those of Arabic, Hebrew with
/// points, the scripts of India, Thai, and letters with combining marks. False only for what each character's own
/// picture is enough for: Latin, Greek and Cyrillic without combining marks, and common punctuation. Reentrant.
[[nodiscard]] bool needsShaping(QStringView text);

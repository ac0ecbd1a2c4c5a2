#pragma once

#include <QStringView>

class QString;

/// The text in lower case, as QString::toLower() has it, in a time that grows with its length and no faster. An empty
/// text stays empty, and is not nil. Reentrant.
[[nodiscard]] QString lowerCase(QStringView text);

#pragma once

#include <QString>

/// The text to show that a feed's content element holds: base64 of UTF-8. The text ends at its first zero byte; it is
/// nil when it is not UTF-8. HTML without a "<body>" of its own gets one, with a font, and a "<br/>" for each line
/// feed; HTML is what begins with "<". Everything else, line feeds included, stays as it is. Reentrant.
[[nodiscard]] QString messageTextFromContent(const QString &base64);

#pragma once

#include <QString>

/// Shortens each stretch of characters that base64 is written with (RFC 4648, white space among them) to `maxLength`
/// characters. What no message keeps need not be read then: the reader takes such a stretch as one, however long it is,
/// while the user waits. XML stays as well formed as it was. Reentrant.
void shortenLongStretches(QString &text, qsizetype maxLength);

#pragma once

#include <QByteArray>
#include <QString>

/// The text of an XML document from outside, as far as it may be given to Qt's reader.
struct FeedDocument final {
    QString text;
    bool isWhole = false; ///< False when the document has more, which is malformed or not to be read.
};

/// Reads UTF-8, UTF-16, UTF-32 and ISO 8859-1, told apart by the first bytes and the declared encoding. ASCII is read
/// as UTF-8, of which it is a part. Any other declared encoding gives an empty text, on purpose: Windows-1252, the
/// other parts of ISO 8859 and those of East Asia would each need tables that the feed has never made use of.
///
/// The text ends before the first character that is not in the document's encoding (half a surrogate pair included),
/// so that all before it can still be used; before the first tag with more than `maxAttributes` attributes (see
/// CrowdedTag.h); and before a document type that may declare something (see DocumentType.h). Reentrant.
[[nodiscard]] FeedDocument feedDocument(const QByteArray &bytes, int maxAttributes);

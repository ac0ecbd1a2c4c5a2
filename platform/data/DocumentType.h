#pragma once

#include <QStringView>

/// How much of an XML document comes before its first document type, wherever that stands: Qt's parser also takes one
/// behind the root element. The whole size when there is none.
///
/// Lets a reader judge a document type before the parser sees it, which expands the entities that an internal subset
/// declares, and compares each of its declarations with all others. Reentrant.
[[nodiscard]] qsizetype lengthBeforeDocumentType(QStringView xml);

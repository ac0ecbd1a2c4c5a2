#pragma once

#include <QStringView>

/// How much of an XML document comes before its first document type, wherever that stands: Qt's parser also takes one
/// behind the root element. The whole size when there is none.
///
/// Lets a reader judge a document type before the parser sees it, which expands the entities that an internal subset
/// declares, and compares each of its declarations with all others. Reentrant.
[[nodiscard]] qsizetype lengthBeforeDocumentType(QStringView xml);

/// The same for the first document type that may declare anything: one with an internal subset, or a second one. A
/// single one that only names a type, and perhaps where its declarations are, does no harm, for the parser never looks
/// there. Reentrant.
[[nodiscard]] qsizetype lengthBeforeDeclaringDocumentType(QStringView xml);

#pragma once

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <vector>

struct FeedToken final {
    enum class Kind : std::uint8_t { StartElement, Characters, EndElement };
    Kind kind = Kind::Characters;
    QString text; ///< The element's name, or the characters.
};

/// What a document of the feed consists of.
struct FeedTokens final {
    /// Of the characters only those that follow the start of an element; comments and the like do not divide them.
    std::vector<FeedToken> tokens;
    bool isMalformed = false; ///< They end where it is.
    QString remark;           ///< For the log: why they end before the document. Nil when they do not.
};

/// Reads a document, which takes its time: each part of it, however long, is one to Qt's reader, and a megabyte takes
/// up to 35 ms. What comes of it is short enough for the main thread.
///
/// Documents are UTF-8, UTF-16, UTF-32 or ISO 8859-1. Refused as malformed are, besides what XML forbids: a document
/// type (so that no entity is ever expanded), another declared encoding, more than 64 attributes in a tag, 100 levels
/// of elements. What comes after a thousand messages is not read: the feed is asked for five. Nor is what comes after a
/// hundred thousand elements, or in an element's text after twice the longest text that a message keeps. Reentrant.
[[nodiscard]] FeedTokens feedTokens(const QByteArray &document);

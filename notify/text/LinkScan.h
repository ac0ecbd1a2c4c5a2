#pragma once

#include <QList>
#include <QString>

/// An address found in a text.
struct LinkMatch {
    qsizetype start = 0;
    qsizetype length = 0;
    QString absoluteString; ///< The whole address, with its scheme, percent-encoded.

    bool operator==(const LinkMatch &) const = default;
};

/// The addresses in a plain text, in their order: http, https, ftp and mailto addresses, words that begin with "www."
/// (http) and bare e-mail addresses (mailto). Punctuation behind an address is not part of it, nor is a closing bracket
/// that none opens within it. Takes time in proportion to the text. Reentrant.
[[nodiscard]] QList<LinkMatch> findLinks(const QString &text);

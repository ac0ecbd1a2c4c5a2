#include "notify/text/LinkScan.h"

#include <QUrl>

#include <algorithm>
#include <optional>

namespace
{

bool isAlphanumeric(QChar c)
{
    return c.isLetterOrNumber();
}

/// What addresses are made of; letters of any script, since people write them so.
bool isAddressCharacter(QChar c)
{
    if (c.unicode() > 0x7f) {
        return c.isLetterOrNumber() || c.isMark() || c.isSurrogate();
    }
    return c.unicode() > 0x20 && c.unicode() != 0x7f && !QStringView(u"<>\"\\^`{|}").contains(c);
}

bool isMailboxCharacter(QChar c)
{
    return c.unicode() <= 0x7f && (isAlphanumeric(c) || QStringView(u"._%+-").contains(c));
}

bool isDomainCharacter(QChar c)
{
    return c.unicode() <= 0x7f && (isAlphanumeric(c) || c == u'.' || c == u'-');
}

/// Whether it has that many labels at least, none of them empty.
bool isDomain(QStringView text, int minLabels)
{
    int labels = 1;
    QChar last = u'.';
    for (const QChar c : text) {
        if (c == u'.') {
            if (last == u'.') {
                return false;
            }
            ++labels;
        }
        last = c;
    }
    return labels >= minLabels && last != u'.';
}

/// Without the punctuation at the end and the brackets that close nothing.
QStringView trimmedEnd(QStringView address)
{
    // How many of each kind are opened, less those that are closed.
    qsizetype round = address.count(u'(') - address.count(u')');
    qsizetype square = address.count(u'[') - address.count(u']');
    while (!address.isEmpty()) {
        const QChar last = address.back();
        if (last == u')' && round < 0) {
            ++round;
        } else if (last == u']' && square < 0) {
            ++square;
        } else if (last == u'(') {
            --round;
        } else if (last == u'[') {
            --square;
        } else if (!QStringView(u".,;:!?'*").contains(last)) {
            break;
        }
        address.chop(1);
    }
    return address;
}

enum class PrefixKind { Hierarchical, Mail, Bare };

struct Prefix {
    QStringView text;
    PrefixKind kind;
};

constexpr Prefix prefixes[] = {{u"http://", PrefixKind::Hierarchical},
                               {u"https://", PrefixKind::Hierarchical},
                               {u"ftp://", PrefixKind::Hierarchical},
                               {u"mailto:", PrefixKind::Mail},
                               {u"www.", PrefixKind::Bare}};

bool isComplete(QStringView address, const Prefix &prefix)
{
    const QStringView rest = address.sliced(prefix.text.size());
    switch (prefix.kind) {
    case PrefixKind::Hierarchical:
        return isAlphanumeric(rest.front()) || rest.front() == u'[';
    case PrefixKind::Mail:
        return rest.indexOf(u'@') > 0 && rest.back() != u'@';
    case PrefixKind::Bare:
        break;
    }
    const auto endOfHost = std::ranges::find_if(rest, [](QChar c) { return QStringView(u"/?#:").contains(c); });
    return isDomain(rest.first(endOfHost - rest.begin()), 2);
}

std::optional<LinkMatch> newMatch(qsizetype start, QStringView found, QLatin1String scheme)
{
    const QUrl url(scheme + found.toString(), QUrl::TolerantMode);
    if (!url.isValid()) {
        return std::nullopt;
    }
    return LinkMatch{start, found.size(), url.toString(QUrl::FullyEncoded)};
}

/// What the look for an address with a prefix came to.
struct Attempt {
    std::optional<LinkMatch> match;
    qsizetype lookedAt = 0; ///< Where the characters end that were looked at for it.
};

/// The address that begins at `start` with one of the prefixes.
Attempt addressAt(QStringView text, qsizetype start)
{
    const QStringView rest = text.sliced(start);
    for (const Prefix &prefix : prefixes) {
        if (!rest.startsWith(prefix.text, Qt::CaseInsensitive)) {
            continue;
        }
        const auto end = std::ranges::find_if_not(rest, isAddressCharacter);
        const QStringView run = rest.first(end - rest.begin());
        const QStringView address = trimmedEnd(run);
        Attempt attempt{std::nullopt, start + run.size()};
        if (address.size() > prefix.text.size() && isComplete(address, prefix)) {
            attempt.match = newMatch(start, address, QLatin1String(prefix.kind == PrefixKind::Bare ? "http://" : ""));
        }
        return attempt;
    }
    return {std::nullopt, start};
}

/// The e-mail address around the "@" at `at`, whose mailbox begins at `from` or behind it.
std::optional<LinkMatch> mailAddressAround(QStringView text, qsizetype at, qsizetype from)
{
    qsizetype start = at;
    while (start > from && isMailboxCharacter(text[start - 1])) {
        --start;
    }
    while (start < at && !isAlphanumeric(text[start])) {
        ++start;
    }
    qsizetype end = at + 1;
    while (end < text.size() && isDomainCharacter(text[end])) {
        ++end;
    }
    while (end > at + 1 && !isAlphanumeric(text[end - 1])) {
        --end;
    }
    if (start == at || !isDomain(text.sliced(at + 1, end - at - 1), 2)) {
        return std::nullopt;
    }
    return newMatch(start, text.sliced(start, end - start), QLatin1String("mailto:"));
}

} // namespace

QList<LinkMatch> findLinks(const QString &text)
{
    QList<LinkMatch> matches;
    qsizetype taken = 0;    // An e-mail address begins here or later.
    qsizetype lookedAt = 0; // So does an address with a prefix: what did not become one is not looked through again.
    for (qsizetype i = 0; i < text.size();) {
        std::optional<LinkMatch> match;
        if (text[i] == u'@') {
            match = mailAddressAround(text, i, taken);
            taken = i + 1;
        } else if (i >= lookedAt && (i == 0 || !isAlphanumeric(text[i - 1]))) {
            const Attempt attempt = addressAt(text, i);
            match = attempt.match;
            lookedAt = attempt.lookedAt;
        }
        if (match) {
            i = match->start + match->length;
            taken = i;
            lookedAt = i;
            matches.append(*match);
        } else {
            ++i;
        }
    }
    return matches;
}

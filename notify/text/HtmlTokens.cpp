#include "notify/text/HtmlTokens.h"

#include <algorithm>
#include <initializer_list>

namespace
{

/// Far more than any tag has; the rest falls away.
constexpr qsizetype maxAttributes = 64;

bool isOneOf(QStringView name, std::initializer_list<QStringView> names)
{
    return std::ranges::find(names, name) != names.end();
}

/// Elements within which nothing is a tag but their end, and whose text nobody is meant to read.
bool hasUnreadText(QStringView name)
{
    return isOneOf(name, {u"style", u"script", u"title", u"textarea", u"iframe", u"noembed", u"noframes"});
}

/// The same with a text that is shown.
bool hasRawText(QStringView name)
{
    return isOneOf(name, {u"xmp", u"plaintext"});
}

/// Of which not even that is a tag.
bool hasNoEnd(QStringView name)
{
    return name == u"plaintext";
}

bool isLetter(QChar c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z');
}

bool isBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f';
}

} // namespace

HtmlTokens::HtmlTokens(QStringView html)
    : m_html(html)
{
}

std::optional<HtmlToken> HtmlTokens::next()
{
    while (m_at < m_html.size()) {
        if (const QString element = std::exchange(m_raw, QString()); !element.isEmpty()) {
            const QStringView text = readRaw(element);
            if (hasRawText(element) && !text.isEmpty()) {
                return HtmlToken{
                    .kind = HtmlToken::Kind::Text, .text = text, .isRaw = true, .name = {}, .attributes = {}};
            }
            continue;
        }
        if (m_html[m_at] == u'<' && isAtTag()) {
            if (at(1) == u'!') {
                skipComment();
            } else if (at(1) == u'?' || (at(1) == u'/' && !isLetter(at(2)))) {
                skipPast(u">");
            } else if (const std::optional<HtmlToken> found = tag()) {
                return found;
            }
            continue;
        }
        const qsizetype start = m_at;
        do {
            ++m_at;
        } while (m_at < m_html.size() && !(m_html[m_at] == u'<' && isAtTag()));
        return HtmlToken{.kind = HtmlToken::Kind::Text,
                         .text = m_html.sliced(start, m_at - start),
                         .isRaw = false,
                         .name = {},
                         .attributes = {}};
    }
    return std::nullopt;
}

bool HtmlTokens::isAtTag() const
{
    const QChar c = at(1);
    return isLetter(c) || c == u'!' || c == u'?' || (c == u'/' && !at(2).isNull());
}

QChar HtmlTokens::at(qsizetype ahead) const
{
    return m_at + ahead < m_html.size() ? m_html[m_at + ahead] : QChar();
}

void HtmlTokens::skipBlanks()
{
    while (m_at < m_html.size() && isBlank(m_html[m_at])) {
        ++m_at;
    }
}

void HtmlTokens::skipPast(QStringView end)
{
    const qsizetype found = m_html.indexOf(end, m_at);
    m_at = found < 0 ? m_html.size() : found + end.size();
}

void HtmlTokens::skipComment()
{
    if (at(2) != u'-' || at(3) != u'-') {
        skipPast(u">");
        return;
    }
    m_at += 4;
    if (at(0) == u'>' || (at(0) == u'-' && at(1) == u'>')) { // Such a comment is empty.
        skipPast(u">");
        return;
    }
    while (m_at < m_html.size()) {
        const qsizetype dashes = m_html.indexOf(u"--", m_at);
        if (dashes < 0) {
            m_at = m_html.size();
            return;
        }
        m_at = dashes + 2;
        if (at(0) == u'>' || (at(0) == u'!' && at(1) == u'>')) {
            skipPast(u">");
            return;
        }
        m_at = dashes + 1; // Of three dashes the last two may be the end.
    }
}

std::optional<HtmlToken> HtmlTokens::tag()
{
    HtmlToken token;
    token.kind = at(1) == u'/' ? HtmlToken::Kind::EndTag : HtmlToken::Kind::StartTag;
    m_at += token.kind == HtmlToken::Kind::EndTag ? 2 : 1;
    const qsizetype start = m_at;
    while (m_at < m_html.size() && !isBlank(m_html[m_at]) && m_html[m_at] != u'/' && m_html[m_at] != u'>') {
        ++m_at;
    }
    token.name = m_html.sliced(start, m_at - start).toString().toLower();
    while (readAttribute(token)) {
    }
    if (m_at >= m_html.size()) {
        return std::nullopt;
    }
    ++m_at; // The ">".
    if (token.kind == HtmlToken::Kind::StartTag && (hasUnreadText(token.name) || hasRawText(token.name))) {
        m_raw = token.name;
    }
    return token;
}

bool HtmlTokens::readAttribute(HtmlToken &token)
{
    while (m_at < m_html.size() && (isBlank(m_html[m_at]) || m_html[m_at] == u'/')) {
        ++m_at;
    }
    if (m_at >= m_html.size() || m_html[m_at] == u'>') {
        return false;
    }
    const qsizetype start = m_at++; // The first character may be any, "=" as well.
    while (m_at < m_html.size() && !isBlank(m_html[m_at]) && m_html[m_at] != u'/' && m_html[m_at] != u'>' &&
           m_html[m_at] != u'=') {
        ++m_at;
    }
    const QStringView name = m_html.sliced(start, m_at - start);
    skipBlanks();
    QStringView value;
    if (at(0) == u'=') {
        ++m_at;
        skipBlanks();
        value = readValue();
    }
    if (token.attributes.size() < maxAttributes) {
        token.attributes.append({name.toString().toLower(), value});
    }
    return true;
}

QStringView HtmlTokens::readValue()
{
    const QChar quote = at(0);
    if (quote == u'"' || quote == u'\'') {
        const qsizetype start = ++m_at;
        const qsizetype end = m_html.indexOf(quote, start);
        m_at = end < 0 ? m_html.size() : end + 1;
        return m_html.sliced(start, (end < 0 ? m_html.size() : end) - start);
    }
    const qsizetype start = m_at;
    while (m_at < m_html.size() && !isBlank(m_html[m_at]) && m_html[m_at] != u'>') {
        ++m_at;
    }
    return m_html.sliced(start, m_at - start);
}

QStringView HtmlTokens::readRaw(const QString &element)
{
    const qsizetype start = m_at;
    const QString end = QStringLiteral("</") + element;
    for (qsizetype from = start;;) {
        const qsizetype found = hasNoEnd(element) ? -1 : m_html.indexOf(end, from, Qt::CaseInsensitive);
        if (found < 0) {
            m_at = m_html.size();
            return m_html.sliced(start);
        }
        const qsizetype behind = found + end.size();
        if (behind >= m_html.size() || isBlank(m_html[behind]) || m_html[behind] == u'/' || m_html[behind] == u'>') {
            m_at = found;
            return m_html.sliced(start, found - start);
        }
        from = behind;
    }
}

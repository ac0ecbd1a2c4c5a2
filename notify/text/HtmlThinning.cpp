#include "notify/text/HtmlThinning.h"

#include "notify/text/HtmlTokens.h"

#include <QHash>

#include <algorithm>
#include <array>

namespace
{

constexpr qsizetype maxBytes = 65'536;
constexpr int maxTags = 3000;
constexpr int maxDepth = 150;
constexpr int maxOpenFormats = 24;
constexpr qsizetype maxAddress = 2000;
constexpr qsizetype maxStyle = 1000;
constexpr qsizetype maxValue = 200;

/// What an element is to the reader.
enum class Kind {
    Void,       ///< It has no end.
    SelfEnding, ///< The next of its kind ends it.
    Block,
    Format ///< Opened anew in what follows, until it is ended.
};

struct Element {
    const char *name; ///< As which it is read.
    Kind kind;
};

const QHash<QString, Element> &elements()
{
    static const QHash<QString, Element> all = [] {
        QHash<QString, Element> result;
        const auto add = [&result](Kind kind, std::initializer_list<const char *> names) {
            for (const char *name : names) {
                result.insert(QString::fromLatin1(name), {name, kind});
            }
        };
        add(Kind::Void, {"br", "hr", "img"});
        add(Kind::SelfEnding, {"p", "li", "dt", "dd", "caption", "thead", "tbody", "tfoot", "tr", "td", "th"});
        add(Kind::Block,
            {"div",   "center", "blockquote", "pre", "h1",  "h2",  "h3",   "h4",  "h5",  "h6",  "ul",   "ol", "dl",
             "table", "span",   "ins",        "del", "sub", "sup", "cite", "var", "dfn", "kbd", "samp", "q",  "mark"});
        add(Kind::Format, {"a", "b", "big", "code", "em", "font", "i", "s", "small", "strike", "strong", "tt", "u"});
        for (const char *name :
             {"section", "article", "header", "footer", "main", "nav", "aside", "figure", "figcaption", "form",
              "fieldset", "legend", "address", "details", "summary", "option"}) {
            result.insert(QString::fromLatin1(name), {"div", Kind::Block});
        }
        result.insert(QStringLiteral("menu"), {"ul", Kind::Block});
        result.insert(QStringLiteral("dir"), {"ul", Kind::Block});
        result.insert(QStringLiteral("listing"), {"pre", Kind::Block});
        result.insert(QStringLiteral("image"), {"img", Kind::Void});
        return result;
    }();
    return all;
}

/// 0 for one of which nothing is kept.
qsizetype maxLengthOf(QStringView attribute)
{
    static constexpr std::array kept = {u"align", u"alt",     u"bgcolor", u"border", u"cellpadding", u"cellspacing",
                                        u"color", u"colspan", u"dir",     u"face",   u"hidden",      u"rowspan",
                                        u"size",  u"start",   u"type",    u"valign", u"width"};
    if (attribute == u"href") {
        return maxAddress;
    }
    if (attribute == u"style") {
        return maxStyle;
    }
    const auto is = [attribute](const char16_t *name) { return attribute == QStringView(name); };
    return std::ranges::any_of(kept, is) ? maxValue : 0;
}

class Thinning final
{
public:
    explicit Thinning(const QString &html)
        : m_tokens(html)
    {
    }

    QByteArray run()
    {
        while (std::optional<HtmlToken> token = m_tokens.next()) {
            const bool isText = token->kind == HtmlToken::Kind::Text;
            if (!append(isText ? textOf(token->text) : tagOf(*token))) {
                m_result += isText ? beginningOf(token->text, maxBytes - m_result.size()) : QByteArray();
                m_result += "\xe2\x80\xa6";
                break;
            }
        }
        return m_result;
    }

private:
    [[nodiscard]] bool append(const QByteArray &bytes)
    {
        if (m_result.size() + bytes.size() > maxBytes) {
            return false;
        }
        m_result += bytes;
        return true;
    }

    static QByteArray textOf(QStringView text) { return text.toUtf8().replace('<', "&lt;"); }

    /// As much of a text as takes no more bytes than that.
    static QByteArray beginningOf(QStringView text, qsizetype bytes)
    {
        qsizetype length = std::min(text.size(), bytes);
        while (textOf(text.first(length)).size() > bytes) {
            length = length * 3 / 4;
        }
        // Half a reference to a character would be read as a text or as another one.
        constexpr qsizetype maxReference = 40;
        const qsizetype reference = text.first(length).lastIndexOf(u'&');
        if (reference >= length - maxReference && reference >= 0 && text.first(length).indexOf(u';', reference) < 0) {
            length = reference;
        }
        return textOf(text.first(length));
    }

    QByteArray tagOf(const HtmlToken &token)
    {
        const auto element = elements().constFind(token.name);
        if (element == elements().cend()) {
            return {};
        }
        const bool isStart = token.kind == HtmlToken::Kind::StartTag;
        if (++m_tags > maxTags || (isStart && !mayOpen(element->kind))) {
            return " "; // It may have parted two words.
        }
        if (!isStart) {
            close(element->kind);
            return QByteArray("</") + element->name + '>';
        }
        QByteArray tag = QByteArray("<") + element->name;
        for (const HtmlToken::Attribute &attribute : token.attributes) {
            const qsizetype longest = maxLengthOf(attribute.name);
            // Half an address is another address; half of anything else is nothing much.
            if (longest > 0 && (attribute.value.size() <= longest || longest != maxAddress)) {
                const QByteArray value = attribute.value.first(std::min(attribute.value.size(), longest)).toUtf8();
                tag += ' ' + attribute.name.toLatin1() + "=\"" + QByteArray(value).replace('"', "&quot;") + '"';
            }
        }
        return tag + '>';
    }

    bool mayOpen(Kind kind)
    {
        if (kind == Kind::Void || kind == Kind::SelfEnding) {
            return true;
        }
        if (m_depth >= maxDepth || (kind == Kind::Format && m_openFormats >= maxOpenFormats)) {
            return false;
        }
        ++m_depth;
        m_openFormats += kind == Kind::Format ? 1 : 0;
        return true;
    }

    void close(Kind kind)
    {
        if (kind == Kind::Block || kind == Kind::Format) {
            m_depth = std::max(0, m_depth - 1);
        }
        if (kind == Kind::Format) {
            m_openFormats = std::max(0, m_openFormats - 1);
        }
    }

    HtmlTokens m_tokens;
    QByteArray m_result;
    int m_tags = 0;
    int m_depth = 0; ///< As far as can be told without reading it.
    int m_openFormats = 0;
};

} // namespace

QByteArray thinnedHtml(const QString &html)
{
    return Thinning(html).run();
}

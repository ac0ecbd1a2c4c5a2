#include "notify/text/HtmlThinning.h"

#include "notify/record/MessageText.h"
#include "notify/text/HtmlTokens.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace
{

constexpr int maxTags = 3000;
constexpr int maxDepth = 150;
constexpr int maxOpenFormats = 24;
constexpr int maxBlocksInFormat = 8; ///< In more than that the standard's reader does not end a format.
constexpr qsizetype maxAddress = 2000;
constexpr qsizetype maxStyle = 1000;
constexpr qsizetype maxValue = 200;

/// What an element is to the reader.
enum class Kind {
    Void,       ///< It has no end.
    SelfEnding, ///< The next of its kind ends it.
    Block,
    Inline, ///< Its end is not heard inside a block that was begun in it.
    Format  ///< Opened anew in what follows, until it is ended.
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
            {"div", "center", "blockquote", "pre", "h1", "h2", "h3", "h4", "h5", "h6", "ul", "ol", "dl", "table"});
        add(Kind::Inline, {"span", "ins", "del", "sub", "sup", "cite", "var", "dfn", "kbd", "samp", "q", "mark"});
        add(Kind::Format, {"a", "b", "big", "code", "em", "font", "i", "s", "small", "strike", "strong", "tt", "u"});
        for (const char *name :
             {"section", "article", "header", "footer", "main", "nav", "aside", "figure", "figcaption", "form",
              "fieldset", "legend", "address", "details", "summary", "option"}) {
            result.insert(QString::fromLatin1(name), {"div", Kind::Block});
        }
        result.insert(QStringLiteral("menu"), {"ul", Kind::Block});
        result.insert(QStringLiteral("dir"), {"ul", Kind::Block});
        for (const char *name : {"listing", "xmp", "plaintext"}) {
            result.insert(QString::fromLatin1(name), {"pre", Kind::Block});
        }
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
            if (!append(isText ? textOf(*token, token->text) : tagOf(*token))) {
                m_result += isText ? beginningOf(*token, maxHtmlBytes - m_result.size()) : QByteArray();
                m_result += "\xe2\x80\xa6";
                break;
            }
        }
        return m_result;
    }

private:
    [[nodiscard]] bool append(const QByteArray &bytes)
    {
        if (m_result.size() + bytes.size() > maxHtmlBytes) {
            return false;
        }
        m_result += bytes;
        return true;
    }

    /// A piece of the token's text, for a reader that takes nothing raw.
    static QByteArray textOf(const HtmlToken &token, QStringView piece)
    {
        QByteArray text = piece.toUtf8();
        if (token.isRaw) {
            text.replace('&', "&amp;");
        }
        return text.replace('<', "&lt;");
    }

    /// As much of its text as takes no more bytes than that.
    static QByteArray beginningOf(const HtmlToken &token, qsizetype bytes)
    {
        const QStringView text = token.text;
        qsizetype length = std::min(text.size(), bytes);
        while (textOf(token, text.first(length)).size() > bytes) {
            length = length * 3 / 4;
        }
        // Half a reference to a character would be read as a text or as another one.
        constexpr qsizetype maxReference = 40;
        const qsizetype reference = text.first(length).lastIndexOf(u'&');
        if (reference >= length - maxReference && reference >= 0 && text.first(length).indexOf(u';', reference) < 0) {
            length = reference;
        }
        return textOf(token, text.first(length));
    }

    QByteArray tagOf(const HtmlToken &token)
    {
        const auto element = elements().constFind(token.name);
        if (element == elements().cend()) {
            return {};
        }
        const bool isStart = token.kind == HtmlToken::Kind::StartTag;
        if (++m_tags > maxTags || (isStart && !open(*element))) {
            return " "; // It may have parted two words.
        }
        if (!isStart) {
            close(*element);
            return QByteArray("</") + element->name + '>';
        }
        QByteArray tag = QByteArray("<") + element->name;
        for (const HtmlToken::Attribute &attribute : token.attributes) {
            const qsizetype maxLength = maxLengthOf(attribute.name);
            // Half an address is another address; half of anything else is nothing much.
            if (maxLength > 0 && (attribute.value.size() <= maxLength || maxLength != maxAddress)) {
                const QByteArray value = attribute.value.first(std::min(attribute.value.size(), maxLength)).toUtf8();
                tag += ' ' + attribute.name.toLatin1() + "=\"" + QByteArray(value).replace('"', "&quot;") + '"';
            }
        }
        return tag + '>';
    }

    /// False when that would be too many.
    bool open(const Element &element)
    {
        if (element.kind == Kind::Void) {
            return true;
        }
        if (element.kind != Kind::SelfEnding) {
            if (m_depth >= maxDepth || (element.kind == Kind::Format && m_openFormats >= maxOpenFormats)) {
                return false;
            }
            ++m_depth;
            m_openFormats += element.kind == Kind::Format ? 1 : 0;
        }
        m_open.push_back(element);
        return true;
    }

    /// Takes the element that the tag ends from those that are open, if the reader is sure to see it in the same way.
    /// In doubt it stays: what the reader holds open costs it time, and by ends that end nothing it could be misled.
    void close(const Element &element)
    {
        const std::string_view name = element.name;
        int blocks = 0; // In it.
        for (auto last = m_open.end(); last != m_open.begin();) {
            --last;
            if (last->name == name || (isHeading(name) && isHeading(last->name))) {
                if (element.kind != Kind::Format) {
                    forget(last, true);
                } else if (blocks < maxBlocksInFormat) {
                    forget(last, false);
                }
                return;
            }
            const bool isBlock = last->kind == Kind::Block || last->kind == Kind::SelfEnding;
            blocks += isBlock ? 1 : 0;
            if (last->name == std::string_view("table") || (isBlock && element.kind == Kind::Inline)) {
                return;
            }
        }
    }

    static bool isHeading(std::string_view name) { return name.size() == 2 && name[0] == 'h' && name[1] != 'r'; }

    /// With `contents`, whatever was opened in it goes, too, but the formats, which the reader will open anew.
    void forget(std::vector<Element>::iterator element, bool contents)
    {
        const auto leave = [this](const Element &left) {
            m_depth -= left.kind == Kind::SelfEnding ? 0 : 1;
            m_openFormats -= left.kind == Kind::Format ? 1 : 0;
        };
        leave(*element);
        auto next = m_open.erase(element);
        while (contents && next != m_open.end()) {
            if (next->kind == Kind::Format) {
                ++next;
            } else {
                leave(*next);
                next = m_open.erase(next);
            }
        }
    }

    HtmlTokens m_tokens;
    QByteArray m_result;
    int m_tags = 0;
    std::vector<Element> m_open; ///< As far as can be told without reading it; rather too many than too few.
    int m_depth = 0;             ///< How many of them need an end.
    int m_openFormats = 0;
};

} // namespace

QByteArray thinnedHtml(const QString &html)
{
    return Thinning(html).run();
}

#pragma once

#include <QList>
#include <QString>
#include <QStringView>

#include <optional>

/// A piece of HTML. All views are into the text that was read.
struct HtmlToken final {
    enum class Kind { Text, StartTag, EndTag };

    /// Of a start tag. The value is as it was written, its character references included.
    struct Attribute {
        QString name; ///< In small letters.
        QStringView value;
    };

    Kind kind = Kind::Text;
    QStringView text;   ///< Of a text: as it was written.
    bool isRaw = false; ///< Of a text: there are no references to characters in it.
    QString name;       ///< Of a tag, in small letters.
    QList<Attribute> attributes;
};

/// Splits HTML into its tags and texts, where the standard for HTML has them begin and end. Everything else falls away:
/// comments, document types, a tag without its end, and the contents of elements that hold no text for a reader (style,
/// script, title and such). Takes time in proportion to the text. Reentrant.
class HtmlTokens final
{
public:
    /// `html` must outlive this object and its tokens.
    explicit HtmlTokens(QStringView html);

    /// The next piece; none at the end.
    [[nodiscard]] std::optional<HtmlToken> next();

private:
    [[nodiscard]] bool isAtTag() const;
    [[nodiscard]] QChar at(qsizetype ahead) const;
    void skipBlanks();
    void skipComment();
    void skipPast(QStringView end);
    [[nodiscard]] std::optional<HtmlToken> tag();
    [[nodiscard]] bool readAttribute(HtmlToken &token);
    [[nodiscard]] QStringView readValue();
    /// Up to the end tag of the element, before which nothing is a tag, if it has one.
    [[nodiscard]] QStringView readRaw(const QString &element);

    QStringView m_html;
    qsizetype m_at = 0;
    QString m_raw; ///< The element whose raw text comes next; empty for none.
};

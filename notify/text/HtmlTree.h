#pragma once

#include <QByteArray>
#include <QString>

#include <functional>
#include <gumbo.h>

/// HTML as the standard says that it is to be understood, however it is written: a tree of elements and texts, of
/// libgumbo's making. Reentrant.
class HtmlTree final
{
public:
    /// Reads `html`, in UTF-8.
    explicit HtmlTree(QByteArray html);
    ~HtmlTree();
    HtmlTree(const HtmlTree &) = delete;
    HtmlTree &operator=(const HtmlTree &) = delete;

    /// The element that holds all that is shown; null when there is none. Lives as long as this object.
    [[nodiscard]] const GumboNode *body() const;

private:
    const QByteArray m_html;
    GumboOutput *const m_output;
};

namespace HtmlNode
{

/// Whether it is an element, and not a text or a comment.
[[nodiscard]] bool isElement(const GumboNode &node);
/// Whether it is an element that stands on lines of its own.
[[nodiscard]] bool isBlock(const GumboNode &node);
/// The text of a text, with its white space; null for any other node.
[[nodiscard]] QString text(const GumboNode &node);
/// An element's attribute; null when it has none of that name.
[[nodiscard]] QString attribute(const GumboNode &element, const char *name);
/// Calls back for each child of an element.
void forEachChild(const GumboNode &element, const std::function<void(const GumboNode &child)> &visit);

} // namespace HtmlNode

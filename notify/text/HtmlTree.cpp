#include "notify/text/HtmlTree.h"

#include <utility>

namespace
{

GumboOptions options()
{
    GumboOptions result = kGumboDefaultOptions;
    result.max_errors = 0; // Nobody asks for them, and each is kept.
    return result;
}

} // namespace

HtmlTree::HtmlTree(QByteArray html)
    : m_html(std::move(html))
    , m_output([this] {
        const GumboOptions ours = options();
        return gumbo_parse_with_options(&ours, m_html.constData(), static_cast<std::size_t>(m_html.size()));
    }())
{
}

HtmlTree::~HtmlTree()
{
    const GumboOptions ours = options();
    gumbo_destroy_output(&ours, m_output);
}

const GumboNode *HtmlTree::body() const
{
    const GumboNode *body = nullptr;
    HtmlNode::forEachChild(*m_output->root, [&body](const GumboNode &child) {
        if (HtmlNode::isElement(child) && child.v.element.tag == GUMBO_TAG_BODY) {
            body = &child;
        }
    });
    return body;
}

bool HtmlNode::isElement(const GumboNode &node)
{
    return node.type == GUMBO_NODE_ELEMENT;
}

bool HtmlNode::isBlock(const GumboNode &node)
{
    switch (isElement(node) ? node.v.element.tag : GUMBO_TAG_UNKNOWN) {
    case GUMBO_TAG_P:
    case GUMBO_TAG_DIV:
    case GUMBO_TAG_CENTER:
    case GUMBO_TAG_BLOCKQUOTE:
    case GUMBO_TAG_PRE:
    case GUMBO_TAG_H1:
    case GUMBO_TAG_H2:
    case GUMBO_TAG_H3:
    case GUMBO_TAG_H4:
    case GUMBO_TAG_H5:
    case GUMBO_TAG_H6:
    case GUMBO_TAG_DL:
    case GUMBO_TAG_DT:
    case GUMBO_TAG_DD:
    case GUMBO_TAG_LI:
    case GUMBO_TAG_CAPTION:
        return true;
    default:
        return false;
    }
}

QString HtmlNode::text(const GumboNode &node)
{
    const bool isText = node.type == GUMBO_NODE_TEXT || node.type == GUMBO_NODE_WHITESPACE;
    return isText ? QString::fromUtf8(node.v.text.text) : QString();
}

QString HtmlNode::attribute(const GumboNode &element, const char *name)
{
    const GumboAttribute *const found = gumbo_get_attribute(&element.v.element.attributes, name);
    return found ? QString::fromUtf8(found->value) : QString();
}

void HtmlNode::forEachChild(const GumboNode &element, const std::function<void(const GumboNode &child)> &visit)
{
    const GumboVector &children = element.v.element.children;
    for (unsigned i = 0; i < children.length; ++i) {
        visit(*static_cast<const GumboNode *>(children.data[i]));
    }
}

#include "notify/text/HtmlContent.h"

#include "notify/text/HtmlStyle.h"
#include "notify/text/HtmlTree.h"

#include <algorithm>

namespace
{

bool isInk(QChar c)
{
    constexpr char16_t graphemeJoiner = u'\u034f';
    return !c.isSpace() && c.category() != QChar::Other_Format && c != QChar(graphemeJoiner);
}

/// True when the element has something to show. Text that is `sizeless` is nothing.
bool note(const GumboNode &element, bool isSizeless, std::unordered_set<const GumboNode *> &noted)
{
    bool has = false;
    HtmlNode::forEachChild(element, [&](const GumboNode &child) {
        if (!HtmlNode::isElement(child)) {
            const QString text = HtmlNode::text(child);
            has = (!isSizeless && std::ranges::any_of(text, isInk)) || has;
            return;
        }
        const HtmlStyle style = htmlStyle(child, 1);
        if (style.isHidden) {
            return;
        }
        const bool isRule = child.v.element.tag == GUMBO_TAG_HR;
        const bool isPicture =
            child.v.element.tag == GUMBO_TAG_IMG && !HtmlNode::attribute(child, "alt").trimmed().isEmpty();
        if (note(child, style.isSizelessWithin(isSizeless), noted) || isRule || isPicture) {
            noted.insert(&child);
            has = true;
        }
    });
    return has;
}

} // namespace

std::unordered_set<const GumboNode *> elementsWithContent(const GumboNode &element)
{
    std::unordered_set<const GumboNode *> noted;
    note(element, htmlStyle(element, 1).isSizeless, noted);
    return noted;
}

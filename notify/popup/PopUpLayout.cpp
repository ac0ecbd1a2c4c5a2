#include "notify/popup/PopUpLayout.h"

#include "notify/popup/PopUpPlacement.h"
#include "notify/record/KivNotification.h"
#include "platform/text/TextMeasure.h"

#include <algorithm>
#include <cmath>

namespace
{

constexpr float margin = 11;
constexpr float iconSize = 50;
constexpr float titleHeight = 20;
constexpr float buttonHeight = 30;
constexpr float closeButtonWidth = 70;
constexpr float textLeft = margin + iconSize + margin;

/// The height of all but the text itself, when that has the height that it asks for.
float heightAroundText(const PopUpContents &contents)
{
    const float asked = contents.contentSize.height;
    const float block = std::max(iconSize, asked + (contents.hasTitle ? titleHeight : 0));
    return block - asked + buttonHeight + margin * static_cast<float>(contents.hasTitle ? 4 : 3);
}

} // namespace

PopUpLayout popUpLayout(const PopUpContents &contents)
{
    const NSSize asked = contents.contentSize;
    const float textHeight = contents.textHeight ? std::max(titleHeight, *contents.textHeight) : asked.height;
    const float width = asked.width + iconSize + 3 * margin;
    const float height = heightAroundText(contents) + textHeight;
    const float aboveText = margin + (contents.hasTitle ? titleHeight + margin : 0);
    const float half = (asked.width + iconSize) / 2;
    return {
        .window = {{0, 0}, {width, height}},
        .icon = {{margin, height - iconSize - margin}, {iconSize, iconSize}},
        .title = {{textLeft, height - titleHeight - margin}, {asked.width, titleHeight}},
        .text = {{textLeft, height - textHeight - aboveText}, {asked.width, textHeight}},
        .remindMeLater = {{margin, margin}, {half, buttonHeight}},
        .dontRemindMe = {{2 * margin + half, margin}, {half, buttonHeight}},
        .closeButton = {{(width - closeButtonWidth) / 2, margin}, {closeButtonWidth, buttonHeight}},
    };
}

NSSize boundedContentSize(NSSize asked, NSSize screen)
{
    const float maxWidth =
        std::max(KivNotification::defaultContentWidth, screen.width - 2 * popUpSideMargin - iconSize - 3 * margin);
    // Written so that what is not a number fails each test.
    const float width = asked.width > 0 ? std::min(asked.width, maxWidth) : KivNotification::defaultContentWidth;
    const float height = asked.height > 0 ? std::min(asked.height, maxMeasuredHeight) : 0;
    return {width, height};
}

float maxTextHeight(const PopUpContents &contents, NSSize screen, float reach)
{
    return std::max(iconSize, screen.height - popUpTop(reach) - popUpBottomMargin - heightAroundText(contents));
}

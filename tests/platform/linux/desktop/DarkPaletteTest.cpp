#include "platform/linux/desktop/DarkPalette.h"

#include <QColor>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace
{

/// As WCAG 2 has it: 4.5 can be read, 3 seen.
double contrast(const QPalette &palette, QPalette::ColorGroup group, QPalette::ColorRole one, QPalette::ColorRole other)
{
    const auto luminance = [&](QPalette::ColorRole role) {
        const QColor colour = palette.color(group, role);
        const auto linear = [](double part) {
            return part <= 0.04045 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) + 0.0722 * linear(colour.blueF());
    };
    const double first = luminance(one) + 0.05;
    const double second = luminance(other) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

} // namespace

TEST(DarkPalette, CanBeReadInAllItsPairs)
{
    constexpr std::pair<QPalette::ColorRole, QPalette::ColorRole> pairs[] = {
        {QPalette::WindowText, QPalette::Window},       {QPalette::Text, QPalette::Base},
        {QPalette::ButtonText, QPalette::Button},       {QPalette::HighlightedText, QPalette::Highlight},
        {QPalette::ToolTipText, QPalette::ToolTipBase}, {QPalette::Link, QPalette::Window},
        {QPalette::LinkVisited, QPalette::Window},
    };
    for (const auto &[words, ground] : pairs) {
        EXPECT_GE(contrast(darkPalette(), QPalette::Active, words, ground), 4.5) << words;
        EXPECT_GE(contrast(darkPalette(), QPalette::Inactive, words, ground), 4.5) << words;
    }
    EXPECT_GE(contrast(darkPalette(), QPalette::Disabled, QPalette::WindowText, QPalette::Window), 3);
    EXPECT_GE(contrast(darkPalette(), QPalette::Disabled, QPalette::ButtonText, QPalette::Button), 3);
}

TEST(DarkPalette, HasFadedWordsForWhatCannotBeChosen)
{
    EXPECT_LT(contrast(darkPalette(), QPalette::Disabled, QPalette::WindowText, QPalette::Window),
              contrast(darkPalette(), QPalette::Active, QPalette::WindowText, QPalette::Window) / 2);
}

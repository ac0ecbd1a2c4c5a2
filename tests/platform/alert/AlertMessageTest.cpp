#include "platform/alert/AlertMessage.h"

#include <gtest/gtest.h>

namespace
{
using Lines = std::vector<QStringList>;

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

Lines lines(std::initializer_list<std::initializer_list<const char *>> cells)
{
    Lines result;
    for (const auto &line : cells) {
        QStringList row;
        for (const char *cell : line) {
            row += text(cell);
        }
        result.push_back(row);
    }
    return result;
}
TEST(AlertMessage, IsReadOutWithoutTabs)
{
    EXPECT_EQ(alertWords(QStringLiteral("\nProgramming:\t\tOne\n\t\t\tTwo\n\n")),
              QStringLiteral("\nProgramming: One\nTwo\n\n"));
    EXPECT_EQ(alertWords(QStringLiteral("A message")), QStringLiteral("A message"));
}

} // namespace

TEST(AlertColumns, BeginAtARunOfTabsHoweverLong)
{
    EXPECT_EQ(alertColumns(text("Product:\t\tKivune\nCompany:\tTamborel")),
              lines({{"Product:", "Kivune"}, {"Company:", "Tamborel"}}));
}

TEST(AlertColumns, AreEmptyAtTheStartOfALineThatBeginsWithTabs)
{
    EXPECT_EQ(alertColumns(text("Programming:\t\tOne\n\t\t\t\tTwo")), lines({{"Programming:", "One"}, {"", "Two"}}));
}

TEST(AlertColumns, KeepEmptyLines)
{
    EXPECT_EQ(alertColumns(text("\na\n\n")), lines({{""}, {"a"}, {""}, {""}}));
}

TEST(FormatDirectives, LeaveAPercentSignWhereTwoStand)
{
    EXPECT_EQ(withoutFormatDirectives(text("100%% sure")), text("100% sure"));
    EXPECT_EQ(withoutFormatDirectives(text("%%%%")), text("%%"));
}

TEST(FormatDirectives, StandAsTheyAreWhenTheyWouldReadAnArgument)
{
    for (const char *message : {"%@", "%s and %d", "%n", "%1$@", "50% off", "%"}) {
        EXPECT_EQ(withoutFormatDirectives(text(message)), text(message));
    }
}

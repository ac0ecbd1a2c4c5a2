#include "platform/linux/desktop/XSettings.h"

#include "tests/support/XSettingsProperty.h"

#include <gtest/gtest.h>

namespace
{

constexpr auto orders = {XSettingsProperty::ByteOrder::Little, XSettingsProperty::ByteOrder::Big};

QByteArray threeSettings(XSettingsProperty::ByteOrder order)
{
    XSettingsProperty property(order);
    property.addNumber("Gdk/WindowScalingFactor", -2);
    property.addColour("Some/Colour");
    property.addText("Net/ThemeName", "Näme");
    return property.bytes();
}

} // namespace

TEST(XSettings, AreReadInBothByteOrders)
{
    for (const auto order : orders) {
        const std::optional<XSettings> read = readXSettings(threeSettings(order));
        ASSERT_TRUE(read);
        EXPECT_EQ(read->number("Gdk/WindowScalingFactor"), -2);
        EXPECT_EQ(read->text("Net/ThemeName"), "Näme");
    }
}

TEST(XSettings, HaveNoValueThatWasNotSetOrIsOfAnotherType)
{
    const std::optional<XSettings> read = readXSettings(threeSettings(XSettingsProperty::ByteOrder::Little));
    ASSERT_TRUE(read);
    EXPECT_EQ(read->number("Net/ThemeName"), std::nullopt);
    EXPECT_EQ(read->text("Gdk/WindowScalingFactor"), "");
    EXPECT_EQ(read->number("Some/Colour"), std::nullopt);
    EXPECT_EQ(read->text("Another"), "");
}

TEST(XSettings, AreNoneWhereverTheyAreCutShort)
{
    for (const auto order : orders) {
        const QByteArray whole = threeSettings(order);
        for (qsizetype length = 0; length < whole.size(); ++length) {
            EXPECT_FALSE(readXSettings(whole.first(length))) << length;
        }
        EXPECT_TRUE(readXSettings(whole + "what is behind"));
    }
}

TEST(XSettings, AreNoneInAnotherByteOrderOrOfAnUnknownType)
{
    QByteArray bytes = threeSettings(XSettingsProperty::ByteOrder::Little);
    bytes[0] = 2;
    EXPECT_FALSE(readXSettings(bytes));
    bytes = threeSettings(XSettingsProperty::ByteOrder::Little);
    bytes[12] = 3;
    EXPECT_FALSE(readXSettings(bytes));
}

TEST(XSettings, AreNoneWhenTheySayThatTheyAreMoreThanThereIs)
{
    QByteArray bytes = threeSettings(XSettingsProperty::ByteOrder::Little);
    bytes.replace(8, 4, "\xff\xff\xff\xff", 4);
    EXPECT_FALSE(readXSettings(bytes));
    XSettingsProperty property(XSettingsProperty::ByteOrder::Little);
    property.addText("Name", "text");
    bytes = property.bytes();
    bytes.replace(bytes.indexOf("text") - 4, 4, "\xff\xff\xff\xff", 4);
    EXPECT_FALSE(readXSettings(bytes));
}

TEST(XSettings, MayBeEmptyAndAreNotReadBeyondTheirLimit)
{
    EXPECT_TRUE(readXSettings(XSettingsProperty(XSettingsProperty::ByteOrder::Big).bytes()));
    const QByteArray whole = threeSettings(XSettingsProperty::ByteOrder::Little);
    EXPECT_TRUE(readXSettings(whole + QByteArray(qsizetype{maxXSettingsBytes} - whole.size(), '\0')));
    EXPECT_FALSE(readXSettings(whole + QByteArray(qsizetype{maxXSettingsBytes} - whole.size() + 1, '\0')));
}

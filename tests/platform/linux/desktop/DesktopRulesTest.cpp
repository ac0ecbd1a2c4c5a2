#include "platform/linux/desktop/DesktopRules.h"

#include <gtest/gtest.h>

namespace
{

XSettings themed(const QByteArray &theme)
{
    XSettings settings;
    settings.texts.insert("Net/ThemeName", theme);
    return settings;
}

struct ScaleCase {
    const char *description;
    QHash<QByteArray, std::int32_t> settings;
    double resourceDpi;
    double scale;
};

constexpr std::int32_t dpi(int dots)
{
    return dots * 1024;
}

} // namespace

TEST(ColourScheme, HasNoPreferenceForANumberWithoutMeaning)
{
    EXPECT_EQ(colourSchemeOf(0), ColourScheme::NoPreference);
    EXPECT_EQ(colourSchemeOf(1), ColourScheme::Dark);
    EXPECT_EQ(colourSchemeOf(2), ColourScheme::Light);
    EXPECT_EQ(colourSchemeOf(3), ColourScheme::NoPreference);
    EXPECT_EQ(colourSchemeOf(0xffffffff), ColourScheme::NoPreference);
}

TEST(ThemeName, SaysWhetherTheThemeIsDark)
{
    for (const char *name : {"Adwaita-dark", "Arc-Dark", "Mint-Y-Dark-Aqua", "Yaru-blue-dark", "BreezeDark",
                             "HighContrastInverse", "dark"}) {
        EXPECT_TRUE(isNameOfDarkTheme(name)) << name;
    }
    for (const char *name : {"", "Adwaita", "Greybird", "Arc-Darker", "HighContrast", "Raleigh"}) {
        EXPECT_FALSE(isNameOfDarkTheme(name)) << name;
    }
}

TEST(Desktop, IsDarkByItsPortalBeforeItsTheme)
{
    EXPECT_TRUE(isDesktopDark(ColourScheme::Dark, themed("Adwaita")));
    EXPECT_FALSE(isDesktopDark(ColourScheme::Light, themed("Adwaita-dark")));
    EXPECT_TRUE(isDesktopDark(ColourScheme::NoPreference, themed("Adwaita-dark")));
    EXPECT_FALSE(isDesktopDark(ColourScheme::NoPreference, themed("Adwaita")));
    EXPECT_FALSE(isDesktopDark(ColourScheme::NoPreference, XSettings()));
}

TEST(Desktop, IsDarkWhereApplicationsShallPreferTheDarkSideOfATheme)
{
    XSettings settings = themed("Adwaita");
    settings.numbers.insert("Gtk/ApplicationPreferDarkTheme", 1);
    EXPECT_TRUE(isDesktopDark(ColourScheme::NoPreference, settings));
    EXPECT_FALSE(isDesktopDark(ColourScheme::Light, settings));
    settings.numbers.insert("Gtk/ApplicationPreferDarkTheme", 0);
    EXPECT_FALSE(isDesktopDark(ColourScheme::NoPreference, settings));
}

TEST(DesktopScale, IsThatOfTheDotsPerInchAndTheWholeScaleWhereTheyLeaveItOut)
{
    const ScaleCase cases[] = {
        {"nothing is set", {}, 0, 1},
        {"dots of a scale of 1", {{"Xft/DPI", dpi(96)}}, 0, 1},
        {"more dots", {{"Xft/DPI", dpi(120)}}, 0, 1.25},
        {"fewer dots, which are of text alone", {{"Xft/DPI", dpi(72)}}, 0, 1},
        {"parts of a dot, which do not count", {{"Xft/DPI", dpi(120) + 1000}}, 0, 1.25},
        {"dots that are none", {{"Xft/DPI", -1}}, 0, 1},
        {"resources", {}, 144, 1.5},
        {"resources with parts of a dot", {}, 143.6, 1.5},
        {"resources where the settings have no dots", {{"Xft/DPI", -1}}, 144, 1.5},
        {"settings before resources", {{"Xft/DPI", dpi(120)}}, 192, 1.25},
        {"a whole scale of 1", {{"Gdk/WindowScalingFactor", 1}, {"Xft/DPI", dpi(120)}}, 0, 1.25},
        {"only the whole scale", {{"Gdk/WindowScalingFactor", 2}}, 0, 2},
        {"dots that leave it out", {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", dpi(96)}}, 0, 2},
        {"larger letters, too", {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", dpi(120)}}, 0, 2.5},
        {"smaller letters, too", {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", dpi(72)}}, 0, 2},
        {"dots that have it in them",
         {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", dpi(192)}, {"Gdk/UnscaledDPI", dpi(96)}},
         0,
         2},
        {"dots without it, said twice",
         {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", dpi(96)}, {"Gdk/UnscaledDPI", dpi(96)}},
         0,
         2},
        {"resources that have it in them", {{"Gdk/WindowScalingFactor", 2}, {"Gdk/UnscaledDPI", dpi(96)}}, 192, 2},
        {"resources that leave it out", {{"Gdk/WindowScalingFactor", 2}}, 120, 2.5},
        {"no whole scale", {{"Gdk/WindowScalingFactor", 0}}, 0, 1},
        {"a negative one", {{"Gdk/WindowScalingFactor", -2}}, 0, 1},
        {"one that no screen has", {{"Gdk/WindowScalingFactor", 9}}, 0, 1},
        {"the largest that counts", {{"Gdk/WindowScalingFactor", 8}}, 0, 8},
        {"one that would make it smaller than the dots do",
         {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", dpi(192)}, {"Gdk/UnscaledDPI", 1}},
         0,
         2},
        {"more than the largest together", {{"Gdk/WindowScalingFactor", 8}, {"Xft/DPI", dpi(192)}}, 0, 8},
        {"dots that no screen has", {{"Xft/DPI", dpi(96) * 1000}}, 0, 8},
    };
    for (const ScaleCase &each : cases) {
        XSettings settings;
        settings.numbers = each.settings;
        EXPECT_DOUBLE_EQ(desktopScale(settings, each.resourceDpi), each.scale) << each.description;
    }
}

TEST(DesktopDotsPerInch, AreSaidByANumberThatIsOne)
{
    for (const auto &[value, isSaid] :
         {std::pair(dpi(96), true), {1024, true}, {1023, false}, {0, false}, {-1, false}}) {
        XSettings settings;
        settings.numbers.insert("Xft/DPI", value);
        EXPECT_EQ(saysDotsPerInch(settings), isSaid) << value;
    }
    EXPECT_FALSE(saysDotsPerInch(XSettings()));
}

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

TEST(DesktopScale, IsWhatTheDotsPerInchDoNotSay)
{
    const ScaleCase cases[] = {
        {"nothing is set", {}, 0, 1},
        {"a scale of 1", {{"Gdk/WindowScalingFactor", 1}, {"Xft/DPI", dpi(120)}}, 0, 1},
        {"only the scale", {{"Gdk/WindowScalingFactor", 2}}, 0, 2},
        {"dots that leave the scale out", {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", dpi(96)}}, 0, 2},
        {"larger letters, too", {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", dpi(120)}}, 0, 2},
        {"dots that have the scale in them",
         {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", dpi(192)}, {"Gdk/UnscaledDPI", dpi(96)}},
         0,
         1},
        {"dots without the scale, said twice",
         {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", dpi(96)}, {"Gdk/UnscaledDPI", dpi(96)}},
         0,
         2},
        {"resources that have the scale in them",
         {{"Gdk/WindowScalingFactor", 2}, {"Gdk/UnscaledDPI", dpi(96)}},
         192,
         1},
        {"settings before resources",
         {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", dpi(96)}, {"Gdk/UnscaledDPI", dpi(96)}},
         192,
         2},
        {"no scale at all", {{"Gdk/WindowScalingFactor", 0}}, 0, 1},
        {"a negative one", {{"Gdk/WindowScalingFactor", -2}}, 0, 1},
        {"one that no screen has", {{"Gdk/WindowScalingFactor", 9}}, 0, 1},
        {"the largest that counts", {{"Gdk/WindowScalingFactor", 8}}, 0, 8},
        {"dots that would make it smaller",
         {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", dpi(192)}, {"Gdk/UnscaledDPI", 1}},
         0,
         1},
        {"dots that are none", {{"Gdk/WindowScalingFactor", 2}, {"Xft/DPI", -1}}, 0, 2},
    };
    for (const ScaleCase &each : cases) {
        XSettings settings;
        settings.numbers = each.settings;
        EXPECT_DOUBLE_EQ(scaleBeyondDpi(settings, each.resourceDpi), each.scale) << each.description;
    }
}

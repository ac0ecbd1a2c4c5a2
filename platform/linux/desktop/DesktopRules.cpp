#include "platform/linux/desktop/DesktopRules.h"

namespace
{

constexpr double standardDpi = 96;
constexpr double dpiUnit = 1024; ///< XSETTINGS counts dots per inch in these parts.
constexpr int maxScale = 8;

/// 0 where it is not set.
double dpiOf(const XSettings &settings, const char *name)
{
    const std::int32_t value = settings.number(name).value_or(0);
    return value > 0 ? value / dpiUnit : 0;
}

} // namespace

ColourScheme colourSchemeOf(std::uint32_t number)
{
    return number <= static_cast<std::uint32_t>(ColourScheme::Light) ? static_cast<ColourScheme>(number)
                                                                     : ColourScheme::NoPreference;
}

bool isNameOfDarkTheme(const QByteArray &theme)
{
    const QByteArray name = theme.toLower();
    return name.contains("inverse") || (name.contains("dark") && !name.contains("darker"));
}

bool isDesktopDark(ColourScheme portal, const XSettings &settings)
{
    if (portal != ColourScheme::NoPreference) {
        return portal == ColourScheme::Dark;
    }
    return isNameOfDarkTheme(settings.text("Net/ThemeName")) ||
           settings.number("Gtk/ApplicationPreferDarkTheme").value_or(0) == 1;
}

double scaleBeyondDpi(const XSettings &settings, double resourceDpi)
{
    const int scale = settings.number("Gdk/WindowScalingFactor").value_or(1);
    if (scale <= 1 || scale > maxScale) {
        return 1;
    }
    // Some desktops multiply Xft/DPI by the scale as well, for those who do not know it, and say what it was before.
    const double set = dpiOf(settings, "Xft/DPI");
    const double known = set > 0 ? set : (resourceDpi > 0 ? resourceDpi : standardDpi);
    const double unscaled = dpiOf(settings, "Gdk/UnscaledDPI");
    const double beyond = scale * (unscaled > 0 ? unscaled : known) / known;
    return beyond >= 1 && beyond <= maxScale ? beyond : 1;
}

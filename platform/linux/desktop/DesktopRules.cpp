#include "platform/linux/desktop/DesktopRules.h"

#include <algorithm>
#include <cmath>

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

/// Qt counts whole dots.
double wholeDots(const XSettings &settings)
{
    return std::floor(dpiOf(settings, "Xft/DPI"));
}

/// What the scale of windows has to be multiplied by beyond what the dots per inch make of it, for the desktop's whole
/// scale (Gdk/WindowScalingFactor): 1 where that is not set or is no scale.
double scaleBeyondDpi(const XSettings &settings, double known)
{
    const int scale = settings.number("Gdk/WindowScalingFactor").value_or(1);
    if (scale <= 1 || scale > maxScale) {
        return 1;
    }
    // Some desktops multiply Xft/DPI by the scale as well, for those who do not know it, and say what it was before.
    const double unscaled = dpiOf(settings, "Gdk/UnscaledDPI");
    const double beyond = scale * (unscaled > 0 ? unscaled : known) / known;
    return beyond >= 1 && beyond <= maxScale ? beyond : 1;
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

bool saysDotsPerInch(const XSettings &settings)
{
    return wholeDots(settings) > 0;
}

double desktopScale(const XSettings &settings, double resourceDpi)
{
    const double set = wholeDots(settings);
    const double resource = std::round(resourceDpi);
    const double known = set > 0 ? set : (resource > 0 ? resource : standardDpi);
    // Text of fewer dots is smaller, and nothing else.
    const double scale = std::max(known / standardDpi, 1.0) * scaleBeyondDpi(settings, known);
    return std::min<double>(scale, maxScale);
}

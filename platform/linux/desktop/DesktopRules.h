#pragma once

#include "platform/linux/desktop/XSettings.h"

/// What the desktop says of light and dark, by the setting color-scheme of org.freedesktop.appearance.
enum class ColourScheme : std::uint32_t { NoPreference = 0, Dark = 1, Light = 2 };

/// The scheme of that number; no preference for one that nobody has given a meaning.
[[nodiscard]] ColourScheme colourSchemeOf(std::uint32_t number);

/// Whether a theme is dark, by its name: "Adwaita-dark", "Mint-Y-Dark-Aqua", "HighContrastInverse". What is "Darker",
/// by custom, has dark title bars only.
[[nodiscard]] bool isNameOfDarkTheme(const QByteArray &theme);

/// Whether windows are to be dark: as the portal says or, where that has no preference, by the theme's name and whether
/// applications shall prefer its dark side.
[[nodiscard]] bool isDesktopDark(ColourScheme portal, const XSettings &settings);

/// What the scale of windows has to be multiplied by beyond what Qt makes of the dots per inch, for the desktop's whole
/// scale (Gdk/WindowScalingFactor), which Qt does not know: 1 where that is not set or is no scale, from 1 to 8.
/// `resourceDpi` is the value of Xft.dpi in the X resources, 0 when it is not set; it counts where no setting does.
[[nodiscard]] double scaleBeyondDpi(const XSettings &settings, double resourceDpi);

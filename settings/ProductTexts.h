#pragma once

#include <QLatin1String>

/// The names of the product in this library: see platform/ProductTexts.h.
namespace ProductTexts
{

inline constexpr char16_t settingsTitle[] = u"Kivune Preferences";

/// The entry of desktops that starts it, and the icon; resources/linux/ has the one, resources/CMakeLists.txt the
/// other.
inline constexpr QLatin1String desktopEntry("com.tamborel.kivmenua");

} // namespace ProductTexts

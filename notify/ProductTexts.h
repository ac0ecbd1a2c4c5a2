#pragma once

#include <QLatin1String>

/// The names of the product in this library: see platform/ProductTexts.h.
namespace ProductTexts
{

/// The title of a pop-up whose message has none; only assistive technology and lists of windows show it.
inline constexpr char16_t popUpTitle[] = u"Kivune";

/// The image in the bundle, an .icns, of a pop-up whose message is of no other type.
inline constexpr QLatin1String popUpIcon("kivmenua");

/// The feed's words for the two products.
inline constexpr QLatin1String feedWordForProduct("kivune");
inline constexpr QLatin1String feedWordForTerminalServer("kivunets");

/// What the settings program writes and the agent keeps, in the user's home folder.
inline constexpr QLatin1String preferencesFile("~/Library/Preferences/com.tamborel.kivmenua.plist");
inline constexpr QLatin1String notificationCacheDirectory("~/Library/Caches/com.tamborel.kivune");

/// A line of the system log, which others look for as it stands.
inline constexpr char preferencesNotWritten[] = "Kivune[M]: Could not write file: : %s";

} // namespace ProductTexts

#pragma once

#include <QLatin1String>

/// The names of the product in this library. Whoever ships the agent under another name changes this file, those of the
/// same name in menu/, notify/ and shell/, resources/Info.plist.in and resources/dbus/; ./kiv check words finds what is
/// left. Names on the session bus are agreed on with the service and the settings program.
namespace ProductTexts
{

/// The title of panels.
inline constexpr char16_t panelTitle[] = u"Kivune";

/// What the status item is called where nobody sees it: the class of its window, and its Id with a StatusNotifierItem
/// host. Panels keep by it what the user has chosen for the item.
inline constexpr QLatin1String itemName("kivmenua");

/// The folders of the images with Info.plist and of the helper programs, from that of the agent; on Linux.
/// CMakeLists.txt has them too.
inline constexpr QLatin1String bundleFolder("../share/kivmenua");
inline constexpr QLatin1String helperFolder("../libexec/kivmenua");

/// The X selection, with the screen's number after it, by which one agent keeps another out of the same display.
inline constexpr char lockSelection[] = "_KIVMENUA_S";

/// The property of the root window that keeps where the user has put an item that stands by itself.
inline constexpr char itemProperty[] = "_KIVMENUA_ITEM";

/// Where on the session bus a process receives events: the bus name, to which its process ID is added, and the object.
inline constexpr QLatin1String eventBusName("com.tamborel.kivune.p");
inline constexpr QLatin1String eventObjectPath("/com/tamborel/kivune/AppleEvents");
inline constexpr QLatin1String eventInterface("com.tamborel.kivune.AppleEvents");

/// Where on the session bus the menu is opened from outside.
inline constexpr QLatin1String menuObjectPath("/com/tamborel/kivune/Menu");
inline constexpr QLatin1String menuInterface("com.tamborel.kivune.Menu");

/// The interface whose signals are distributed notifications.
inline constexpr QLatin1String notificationInterface("com.tamborel.kivune.DistributedNotifications");

/// The file in the user's folder for caches by which one agent keeps another out of the same session; on macOS.
inline constexpr char lockFile[] = "com.tamborel.kivmenua.";

} // namespace ProductTexts

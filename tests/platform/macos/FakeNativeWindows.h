#pragma once

#include <functional>
#include <string>
#include <vector>

/// What the system's own windows and menus have been told, in order: "front", "activate", "status level",
/// "menu at 8, 16" in the system's coordinates, "close menu". A menu says that it opens, and closes at once.
std::vector<std::string> &toldNativeWindows();

/// Whether there are such windows, as there are unless a test says otherwise.
bool &thereAreNativeWindows();

/// What happens while a menu is open; nothing unless a test says so.
std::function<void()> &whileNativeMenuIsOpen();

/// Forgets all of that.
void resetNativeWindows();

#pragma once

#include <string>
#include <vector>

/// What the system's own windows have been told, in order: "front", "activate", "status level", "menu at 8, 16". A menu
/// says that it opens, and closes at once.
std::vector<std::string> &toldNativeWindows();

#pragma once

#include <string>
#include <vector>

/// What the system's own windows have been told, in order: "front", "activate", "status level".
std::vector<std::string> &toldNativeWindows();

#pragma once

#include "menu/ServiceTool.h"

#include <cstdint>

/// Has the service's tool switch the main display to that size, in pixels, and waits for its end without a limit. True
/// when the display has that size afterwards, whatever the tool says of it; with the size it has already, nothing is
/// started.
[[nodiscard]] bool set_dmod(std::uint32_t width, std::uint32_t height, const char *tool = serviceTool);

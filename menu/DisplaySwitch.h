#pragma once

#include "menu/ServiceTool.h"

#include <chrono>
#include <cstdint>

/// Has the service's tool switch the main display to that size, in pixels, and waits for its end without a limit, but
/// for the end of this process's session (GraphicalSession::isEnding). After `timeout` a warning tells what is waited
/// for. True when the display has that size afterwards, whatever the tool says of it; with the size it has already,
/// nothing is started.
[[nodiscard]] bool set_dmod(std::uint32_t width, std::uint32_t height, const char *tool = serviceTool,
                            std::chrono::milliseconds timeout = std::chrono::seconds(30));

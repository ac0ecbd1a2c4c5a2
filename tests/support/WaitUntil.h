#pragma once

#include <chrono>
#include <functional>

/// Runs the event loop until `condition` holds; false when it still does not after `limit`. The condition is looked at
/// after every round of events and at least every 5 ms, so that it may also watch what other processes do.
[[nodiscard]] bool waitUntil(const std::function<bool()> &condition,
                             std::chrono::milliseconds timeout = std::chrono::seconds(10));

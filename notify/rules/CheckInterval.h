#pragma once

#include <chrono>
#include <cstdint>

/// How often the manager looks for a message to show: what the user's setting stands for (a ShowSetting).
[[nodiscard]] std::chrono::minutes checkInterval(std::int32_t notificationShow) noexcept;

#pragma once

#include <chrono>
#include <cstdint>

/// How often the manager looks for a message to show: what the user's setting stands for (`notificationShow`, see
/// NotificationSettings.h).
[[nodiscard]] std::chrono::minutes checkInterval(std::int32_t notificationShow) noexcept;

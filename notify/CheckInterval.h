#pragma once

#include <chrono>
#include <cstdint>

/// How often the manager looks for a message to show.
struct CheckInterval final {
    std::chrono::seconds interval;
    /// How late, never early, a tick may be: 1 % of the interval.
    std::chrono::milliseconds tolerance;

    [[nodiscard]] bool operator==(const CheckInterval &) const = default;
};

/// The interval that the user's setting stands for (`notificationShow`, see NotificationSettings.h).
[[nodiscard]] CheckInterval checkInterval(std::int32_t notificationShow) noexcept;

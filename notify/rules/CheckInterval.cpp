#include "notify/rules/CheckInterval.h"

std::chrono::minutes checkInterval(std::int32_t notificationShow) noexcept
{
    switch (notificationShow) {
    case 2:
        return std::chrono::minutes(5);
    case 3:
        return std::chrono::minutes(15);
    case 4:
        return std::chrono::minutes(30);
    case 5:
        return std::chrono::minutes(60);
    default:
        return std::chrono::minutes(1);
    }
}

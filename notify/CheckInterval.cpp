#include "CheckInterval.h"

namespace
{

int minutes(std::int32_t notificationShow) noexcept
{
    switch (notificationShow) {
    case 2:
        return 5;
    case 3:
        return 15;
    case 4:
        return 30;
    case 5:
        return 60;
    default:
        return 1;
    }
}

} // namespace

CheckInterval checkInterval(std::int32_t notificationShow) noexcept
{
    const std::chrono::minutes interval(minutes(notificationShow));
    return {interval, std::chrono::milliseconds(interval) / 100};
}

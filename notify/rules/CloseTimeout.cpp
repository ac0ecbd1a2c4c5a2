#include "notify/rules/CloseTimeout.h"

#include "notify/record/KivNotification.h"

std::int32_t closeTimeout(std::int32_t messageType, std::int32_t notificationClose) noexcept
{
    constexpr std::int32_t never = -1;
    if (messageType == kTypeUpdate) {
        return never;
    }
    switch (notificationClose) {
    case 1:
        return 15;
    case 2:
        return 30;
    case 3:
        return 60;
    case 4:
        return never;
    default:
        return 0;
    }
}

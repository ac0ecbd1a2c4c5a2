#include "notify/rules/CloseTimeout.h"

#include "notify/record/MessageCodes.h"
#include "notify/rules/SettingCodes.h"

std::int32_t closeTimeout(std::int32_t messageType, std::int32_t notificationClose) noexcept
{
    constexpr std::int32_t never = -1;
    if (messageType == kTypeUpdate) {
        return never;
    }
    switch (notificationClose) {
    case kCloseAfter15Seconds:
        return 15;
    case kCloseAfter30Seconds:
        return 30;
    case kCloseAfter60Seconds:
        return 60;
    case kCloseNever:
        return never;
    default:
        return 0;
    }
}

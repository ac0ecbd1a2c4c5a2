#include "notify/rules/CheckInterval.h"

#include "notify/rules/SettingCodes.h"

std::chrono::minutes checkInterval(std::int32_t notificationShow) noexcept
{
    switch (notificationShow) {
    case kShowEvery5Minutes:
        return std::chrono::minutes(5);
    case kShowEvery15Minutes:
        return std::chrono::minutes(15);
    case kShowEvery30Minutes:
        return std::chrono::minutes(30);
    case kShowEvery60Minutes:
        return std::chrono::minutes(60);
    default:
        return std::chrono::minutes(1);
    }
}

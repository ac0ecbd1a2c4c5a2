#pragma once

#include <cstdint>

/// What the numbers in the user's notification settings mean (NotificationSettings.h). The server's settings program
/// writes them: they never change. Any other number may stand there, too.

/// When a message comes back. Any other number: after 1 hour.
enum RepeatSetting : std::int32_t {
    kRepeatAfter1Hour = 1,
    kRepeatAfter3Hours = 2,
    kRepeatAfter5Hours = 3,
    kRepeatNever = 4,
};

/// When a pop-up closes by itself. Any other number: after its own default.
enum CloseSetting : std::int32_t {
    kCloseAfter15Seconds = 1,
    kCloseAfter30Seconds = 2,
    kCloseAfter60Seconds = 3,
    kCloseNever = 4,
};

/// How often to look for a message to show. Any other number: every minute.
enum ShowSetting : std::int32_t {
    kShowEveryMinute = 1,
    kShowEvery5Minutes = 2,
    kShowEvery15Minutes = 3,
    kShowEvery30Minutes = 4,
    kShowEvery60Minutes = 5,
};

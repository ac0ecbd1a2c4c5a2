#pragma once

#include <Carbon/CoreGraphics.h>

#include <gtest/gtest.h>

#include <optional>

/// The two booleans of a session dictionary.
struct SessionFacts {
    bool isLoginDone;
    bool isOnConsole;

    bool operator==(const SessionFacts &) const = default;
};

/// What the session dictionary says now; none when there is no dictionary.
inline std::optional<SessionFacts> sessionFacts()
{
    const CFDictionaryRef dictionary = CGSessionCopyCurrentDictionary();
    if (!dictionary) {
        return {};
    }
    const auto boolean = [dictionary](CFStringRef key) {
        const void *value = CFDictionaryGetValue(dictionary, key);
        EXPECT_EQ(CFGetTypeID(value), CFBooleanGetTypeID());
        return bool(CFBooleanGetValue(static_cast<CFBooleanRef>(value)));
    };
    const SessionFacts facts{boolean(CFSTR("kCGSessionLoginDoneKey")), boolean(CFSTR("kCGSSessionOnConsoleKey"))};
    CFRelease(dictionary);
    return facts;
}

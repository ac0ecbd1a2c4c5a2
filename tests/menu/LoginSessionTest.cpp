#include "menu/LoginSession.h"

#include <QtGlobal>

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace
{
/// A session dictionary in which a key that is not given is missing.
CFDictionaryRef session(std::optional<bool> loginDone, std::optional<bool> onConsole)
{
    std::vector<const void *> keys;
    std::vector<const void *> values;
    const auto add = [&](CFStringRef key, std::optional<bool> value) {
        if (value) {
            keys.push_back(key);
            values.push_back(*value ? kCFBooleanTrue : kCFBooleanFalse);
        }
    };
    add(CFSTR("kCGSessionLoginDoneKey"), loginDone);
    add(CFSTR("kCGSSessionOnConsoleKey"), onConsole);
    return CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(), static_cast<CFIndex>(keys.size()),
                              &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
}
} // namespace

TEST(LoginSession, IsHiddenOnlyWhenLoginIsDoneAndTheConsoleIsElsewhere)
{
    struct Row {
        std::optional<bool> loginDone;
        std::optional<bool> onConsole;
        bool hidden;
    };
    const Row rows[] = {
        {true, false, true},          {true, true, false},
        {false, false, false},        {false, true, false},
        {std::nullopt, false, false}, {true, std::nullopt, false},
        {std::nullopt, true, false},  {std::nullopt, std::nullopt, false},
    };
    for (const Row &row : rows) {
        const CFDictionaryRef dictionary = session(row.loginDone, row.onConsole);
        EXPECT_EQ(isLoggedInOffConsole(dictionary), row.hidden)
            << "login " << row.loginDone.value_or(false) << ", console " << row.onConsole.value_or(false);
        CFRelease(dictionary);
    }
}

TEST(LoginSession, IsNotHiddenByWhatIsNoTruthValue)
{
    for (const int place : {0, 1}) {
        const void *keys[] = {CFSTR("kCGSessionLoginDoneKey"), CFSTR("kCGSSessionOnConsoleKey")};
        const void *values[] = {kCFBooleanTrue, kCFBooleanFalse};
        values[place] = CFSTR("yes");
        const CFDictionaryRef dictionary = CFDictionaryCreate(
            kCFAllocatorDefault, keys, values, 2, &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks);
        EXPECT_FALSE(isLoggedInOffConsole(dictionary)) << place;
        CFRelease(dictionary);
    }
}

TEST(LoginSession, IsNotHiddenWithoutASessionDictionary)
{
    EXPECT_FALSE(isLoggedInOffConsole(nullptr));
}

#ifdef Q_OS_LINUX
TEST(LoginSession, IsNotHiddenWhereNobodyKnowsOfIt)
{
    EXPECT_FALSE(is_hidden()); // Neither a system bus nor a display here.
}
#endif

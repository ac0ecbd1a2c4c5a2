#include "menu/LoginSession.h"

#include "tests/platform/macos/FakeCoreFoundation.h"
#include "tests/platform/macos/FakeCoreGraphics.h"

#include <gtest/gtest.h>

namespace
{

CFDictionaryRef session(CFBooleanRef onConsole)
{
    const void *keys[] = {CFSTR("kCGSessionLoginDoneKey"), CFSTR("kCGSSessionOnConsoleKey")};
    const void *values[] = {kCFBooleanTrue, onConsole};
    return CFDictionaryCreate(kCFAllocatorDefault, keys, values, 2, &kCFTypeDictionaryKeyCallBacks,
                              &kCFTypeDictionaryValueCallBacks);
}

} // namespace

TEST(MacLoginSession, IsHiddenAwayFromTheConsoleAndItsDictionaryIsReleased)
{
    const int before = FakeCoreFoundation::liveObjects();
    FakeCoreGraphics &system = FakeCoreGraphics::instance();
    system.session = session(kCFBooleanFalse);
    EXPECT_TRUE(is_hidden());
    system.session = session(kCFBooleanTrue);
    EXPECT_FALSE(is_hidden());
    EXPECT_EQ(FakeCoreFoundation::liveObjects(), before);
    EXPECT_FALSE(is_hidden()) << "there is no session";
}

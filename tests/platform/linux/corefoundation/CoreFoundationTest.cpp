#include <Carbon/CoreFoundation.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace
{

struct Release {
    void operator()(const void *object) const { CFRelease(object); }
};
template <typename Ref>
using Owned = std::unique_ptr<std::remove_pointer_t<Ref>, Release>;

Owned<CFStringRef> string(const char *text)
{
    return Owned<CFStringRef>(CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8));
}

template <typename T>
Owned<CFNumberRef> number(CFNumberType type, T value)
{
    return Owned<CFNumberRef>(CFNumberCreate(kCFAllocatorDefault, type, &value));
}

TEST(CFString, KeepsItsText)
{
    for (const char *text : {"", "a", "grüße €\U0001F600"}) {
        const auto made = string(text);
        ASSERT_TRUE(made);
        EXPECT_EQ(CFGetTypeID(made.get()), CFStringGetTypeID());
        std::array<char, 64> buffer{};
        EXPECT_TRUE(CFStringGetCString(made.get(), buffer.data(), 64, kCFStringEncodingUTF8));
        EXPECT_STREQ(buffer.data(), text);
    }
}

TEST(CFString, RefusesWhatIsNoUtf8)
{
    EXPECT_FALSE(string(nullptr));
    for (const char *text : {"\xff", "abc\xc3", "\xc0\x80", "\xed\xa0\x80", "\xf8\x88\x80\x80\x80"}) {
        EXPECT_FALSE(string(text)) << text;
    }
    EXPECT_EQ(CFStringCreateWithCString(kCFAllocatorDefault, "a", 0), nullptr);
}

TEST(CFString, NeedsRoomForTheTerminatingZero)
{
    const auto made = string("grün");
    std::string buffer = "--------";
    for (const CFIndex capacity : {CFIndex(-1), CFIndex(0), CFIndex(1), CFIndex(5)}) {
        EXPECT_FALSE(CFStringGetCString(made.get(), buffer.data(), capacity, kCFStringEncodingUTF8)) << capacity;
        EXPECT_EQ(buffer, "--------");
    }
    EXPECT_TRUE(CFStringGetCString(made.get(), buffer.data(), 6, kCFStringEncodingUTF8));
    EXPECT_EQ(buffer, std::string("grün\0--", 8));
    EXPECT_FALSE(CFStringGetCString(made.get(), nullptr, 64, kCFStringEncodingUTF8));
    EXPECT_FALSE(CFStringGetCString(made.get(), buffer.data(), 8, 1));
    EXPECT_FALSE(CFStringGetCString(nullptr, buffer.data(), 8, kCFStringEncodingUTF8));
}

TEST(CFString, IsOneConstantForEachText)
{
    const std::string elsewhere = "constant";
    EXPECT_EQ(CFSTR("constant"), __CFStringMakeConstantString(elsewhere.c_str()));
    EXPECT_NE(CFSTR("constant"), CFSTR("another"));
    EXPECT_EQ(__CFStringMakeConstantString(nullptr), nullptr);
    // Giving it up once too often does no harm.
    CFRelease(CFSTR("constant"));
    CFRelease(CFSTR("constant"));
    std::array<char, 16> buffer{};
    EXPECT_TRUE(CFStringGetCString(CFSTR("constant"), buffer.data(), 16, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer.data(), "constant");
}

TEST(CFType, CountsItsReferences)
{
    CFStringRef made = CFStringCreateWithCString(kCFAllocatorDefault, "counted", kCFStringEncodingUTF8);
    EXPECT_EQ(CFRetain(made), made);
    CFRelease(made);
    EXPECT_EQ(CFGetTypeID(made), CFStringGetTypeID());
    CFRelease(made);
    CFRelease(nullptr);
    EXPECT_EQ(CFRetain(nullptr), nullptr);
    EXPECT_EQ(CFGetTypeID(nullptr), 0u);
}

TEST(CFType, CountsAcrossThreads)
{
    const auto made = string("shared");
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&made] {
            for (int round = 0; round < 10'000; ++round) {
                CFRetain(made.get());
                CFRelease(made.get());
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(CFGetTypeID(made.get()), CFStringGetTypeID());
}

TEST(CFType, HasAnIDForEachKind)
{
    const std::vector<CFTypeID> ids{CFStringGetTypeID(), CFNumberGetTypeID(), CFBooleanGetTypeID(),
                                    CFDictionaryGetTypeID(), CFArrayGetTypeID()};
    for (std::size_t i = 0; i < ids.size(); ++i) {
        EXPECT_NE(ids[i], 0u);
        for (std::size_t j = 0; j < i; ++j) {
            EXPECT_NE(ids[i], ids[j]);
        }
    }
}

TEST(CFNumber, ReadsIntegersAsEachType)
{
    struct Case {
        std::int64_t value;
        bool isInt32Exact;
        std::int32_t int32;
        bool isRealExact;
        double real;
    };
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
    for (const Case &c : {
             Case{0, true, 0, true, 0.0},
             Case{-5, true, -5, true, -5.0},
             Case{2147483647, true, 2147483647, true, 2147483647.0},
             Case{2147483648, false, -2147483647 - 1, true, 2147483648.0},
             Case{0x1'0000'0005, false, 5, true, 4294967301.0},
             Case{9007199254740993, false, 1, false, 9007199254740992.0},
             Case{largest, false, -1, false, 9223372036854775808.0},
             Case{smallest, false, 0, true, -9223372036854775808.0},
         }) {
        const auto made = number(kCFNumberSInt64Type, c.value);
        ASSERT_TRUE(made);
        EXPECT_EQ(CFGetTypeID(made.get()), CFNumberGetTypeID());
        std::int64_t int64 = 1;
        EXPECT_TRUE(CFNumberGetValue(made.get(), kCFNumberSInt64Type, &int64));
        EXPECT_EQ(int64, c.value);
        std::int32_t int32 = 1;
        EXPECT_EQ(CFNumberGetValue(made.get(), kCFNumberSInt32Type, &int32), c.isInt32Exact) << c.value;
        EXPECT_EQ(int32, c.int32);
        double real = 1;
        EXPECT_EQ(CFNumberGetValue(made.get(), kCFNumberFloat64Type, &real), c.isRealExact) << c.value;
        EXPECT_EQ(real, c.real);
    }
}

TEST(CFNumber, ReadsRealsAsEachType)
{
    struct Case {
        double value;
        bool isInt64Exact;
        std::int64_t int64;
    };
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
    for (const Case &c : {
             Case{0.0, true, 0},
             Case{-3.0, true, -3},
             Case{2.9, false, 2},
             Case{-2.9, false, -2},
             Case{0x1p62, true, 0x4000000000000000},
             Case{0x1p63, false, largest},
             Case{-0x1p63, true, smallest},
             Case{-0x1p70, false, smallest},
             Case{std::numeric_limits<double>::infinity(), false, largest},
             Case{std::numeric_limits<double>::quiet_NaN(), false, 0},
         }) {
        const auto made = number(kCFNumberFloat64Type, c.value);
        std::int64_t int64 = 1;
        EXPECT_EQ(CFNumberGetValue(made.get(), kCFNumberSInt64Type, &int64), c.isInt64Exact) << c.value;
        EXPECT_EQ(int64, c.int64) << c.value;
        double real = 1;
        EXPECT_TRUE(CFNumberGetValue(made.get(), kCFNumberFloat64Type, &real));
        EXPECT_TRUE(real == c.value || std::isnan(c.value));
    }
}

TEST(CFNumber, KeepsAThirtyTwoBitInteger)
{
    const auto made = number(kCFNumberSInt32Type, std::int32_t(-7));
    std::int64_t int64 = 0;
    EXPECT_TRUE(CFNumberGetValue(made.get(), kCFNumberSInt64Type, &int64));
    EXPECT_EQ(int64, -7);
}

TEST(CFNumber, ReadsBooleansToo)
{
    for (const bool truth : {false, true}) {
        const auto boolean = reinterpret_cast<CFNumberRef>(truth ? kCFBooleanTrue : kCFBooleanFalse);
        std::int32_t int32 = -1;
        EXPECT_TRUE(CFNumberGetValue(boolean, kCFNumberSInt32Type, &int32));
        EXPECT_EQ(int32, truth ? 1 : 0);
        double real = -1;
        EXPECT_TRUE(CFNumberGetValue(boolean, kCFNumberFloat64Type, &real));
        EXPECT_EQ(real, truth ? 1.0 : 0.0);
    }
}

TEST(CFNumber, RefusesOtherTypes)
{
    std::int64_t value = 3;
    EXPECT_EQ(CFNumberCreate(kCFAllocatorDefault, 1, &value), nullptr);
    EXPECT_EQ(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, nullptr), nullptr);
    const auto made = number(kCFNumberSInt64Type, value);
    EXPECT_FALSE(CFNumberGetValue(made.get(), 1, &value));
    EXPECT_FALSE(CFNumberGetValue(made.get(), kCFNumberSInt64Type, nullptr));
    EXPECT_FALSE(CFNumberGetValue(nullptr, kCFNumberSInt64Type, &value));
    EXPECT_FALSE(CFNumberGetValue(reinterpret_cast<CFNumberRef>(CFSTR("3")), kCFNumberSInt64Type, &value));
    EXPECT_EQ(value, 3);
}

TEST(CFBoolean, IsOneOfTwo)
{
    EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
    EXPECT_FALSE(CFBooleanGetValue(kCFBooleanFalse));
    EXPECT_FALSE(CFBooleanGetValue(nullptr));
    EXPECT_EQ(CFGetTypeID(kCFBooleanTrue), CFBooleanGetTypeID());
    CFRelease(kCFBooleanTrue);
    CFRelease(kCFBooleanTrue);
    EXPECT_TRUE(CFBooleanGetValue(kCFBooleanTrue));
}

Owned<CFDictionaryRef> dictionary(std::vector<const void *> keys, std::vector<const void *> values)
{
    return Owned<CFDictionaryRef>(CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(),
                                                     static_cast<CFIndex>(keys.size()), &kCFTypeDictionaryKeyCallBacks,
                                                     &kCFTypeDictionaryValueCallBacks));
}

TEST(CFDictionary, FindsByTheTextOfTheKey)
{
    const auto made = dictionary({CFSTR("yes"), CFSTR("no")}, {kCFBooleanTrue, kCFBooleanFalse});
    ASSERT_TRUE(made);
    EXPECT_EQ(CFGetTypeID(made.get()), CFDictionaryGetTypeID());
    EXPECT_EQ(CFDictionaryGetCount(made.get()), 2);
    EXPECT_EQ(CFDictionaryGetValue(made.get(), string("yes").get()), kCFBooleanTrue);
    EXPECT_EQ(CFDictionaryGetValue(made.get(), CFSTR("no")), kCFBooleanFalse);
    EXPECT_EQ(CFDictionaryGetValue(made.get(), CFSTR("YES")), nullptr);
    EXPECT_EQ(CFDictionaryGetValue(made.get(), nullptr), nullptr);
    EXPECT_EQ(CFDictionaryGetValue(nullptr, CFSTR("yes")), nullptr);
    EXPECT_EQ(CFDictionaryGetCount(nullptr), 0);
}

TEST(CFDictionary, KeepsItsKeysAndValuesAlive)
{
    Owned<CFDictionaryRef> made;
    {
        const auto key = string("key");
        const auto value = string("value");
        made = dictionary({key.get()}, {value.get()});
    }
    std::array<char, 16> buffer{};
    const auto value = static_cast<CFStringRef>(CFDictionaryGetValue(made.get(), CFSTR("key")));
    EXPECT_TRUE(CFStringGetCString(value, buffer.data(), 16, kCFStringEncodingUTF8));
    EXPECT_STREQ(buffer.data(), "value");
}

TEST(CFDictionary, KeepsTheFirstOfEqualKeys)
{
    const auto first = string("key");
    const auto second = string("key");
    const auto made = dictionary({first.get(), second.get()}, {kCFBooleanTrue, kCFBooleanFalse});
    EXPECT_EQ(CFDictionaryGetCount(made.get()), 1);
    EXPECT_EQ(CFDictionaryGetValue(made.get(), CFSTR("key")), kCFBooleanTrue);
}

TEST(CFDictionary, RefusesWhatItCannotHold)
{
    EXPECT_TRUE(dictionary({}, {}));
    EXPECT_FALSE(dictionary({CFSTR("a"), nullptr}, {kCFBooleanTrue, kCFBooleanTrue}));
    EXPECT_FALSE(dictionary({CFSTR("a"), kCFBooleanTrue}, {kCFBooleanTrue, kCFBooleanTrue}));
    EXPECT_FALSE(dictionary({CFSTR("a")}, {nullptr}));
    const void *some[] = {CFSTR("a")};
    EXPECT_EQ(CFDictionaryCreate(kCFAllocatorDefault, some, some, -1, nullptr, nullptr), nullptr);
    EXPECT_EQ(CFDictionaryCreate(kCFAllocatorDefault, nullptr, some, 1, nullptr, nullptr), nullptr);
    EXPECT_EQ(CFDictionaryCreate(kCFAllocatorDefault, some, nullptr, 1, nullptr, nullptr), nullptr);
}

TEST(CFArray, KeepsOrderAndValues)
{
    Owned<CFArrayRef> made;
    {
        const auto last = string("last");
        const void *values[] = {CFSTR("first"), last.get()};
        made.reset(CFArrayCreate(kCFAllocatorDefault, values, 2, &kCFTypeArrayCallBacks));
    }
    ASSERT_TRUE(made);
    EXPECT_EQ(CFGetTypeID(made.get()), CFArrayGetTypeID());
    EXPECT_EQ(CFArrayGetCount(made.get()), 2);
    EXPECT_EQ(CFArrayGetValueAtIndex(made.get(), 0), CFSTR("first"));
    EXPECT_EQ(CFGetTypeID(CFArrayGetValueAtIndex(made.get(), 1)), CFStringGetTypeID());
    EXPECT_EQ(CFArrayGetValueAtIndex(made.get(), 2), nullptr);
    EXPECT_EQ(CFArrayGetValueAtIndex(made.get(), -1), nullptr);
    EXPECT_EQ(CFArrayGetValueAtIndex(nullptr, 0), nullptr);
    EXPECT_EQ(CFArrayGetCount(nullptr), 0);
}

TEST(CFArray, KeepsThePlaceOfAMissingElement)
{
    const void *values[] = {nullptr, CFSTR("second")};
    const Owned<CFArrayRef> array(CFArrayCreate(kCFAllocatorDefault, values, 2, &kCFTypeArrayCallBacks));
    EXPECT_EQ(CFArrayGetCount(array.get()), 2);
    EXPECT_EQ(CFArrayGetValueAtIndex(array.get(), 0), nullptr);
    EXPECT_EQ(CFArrayGetValueAtIndex(array.get(), 1), CFSTR("second"));
}

TEST(CFArray, RefusesWhatItCannotHold)
{
    const void *values[] = {CFSTR("first"), nullptr};
    EXPECT_EQ(CFArrayCreate(kCFAllocatorDefault, values, -1, &kCFTypeArrayCallBacks), nullptr);
    EXPECT_EQ(CFArrayCreate(kCFAllocatorDefault, nullptr, 1, &kCFTypeArrayCallBacks), nullptr);
    const Owned<CFArrayRef> empty(CFArrayCreate(kCFAllocatorDefault, nullptr, 0, &kCFTypeArrayCallBacks));
    EXPECT_TRUE(empty);
    EXPECT_EQ(CFArrayGetCount(empty.get()), 0);
}

} // namespace

#include <Carbon/CoreFoundation.h>

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
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

Owned<CFNumberRef> number(std::int32_t value)
{
    return Owned<CFNumberRef>(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &value));
}

/// Holds one value more than its own reference does.
Owned<CFArrayRef> arrayOf(const void *value)
{
    return Owned<CFArrayRef>(CFArrayCreate(kCFAllocatorDefault, &value, 1, &kCFTypeArrayCallBacks));
}

TEST(CFString, KeepsItsText)
{
    for (const char *text : {"", "a", "grüße €\U0001F600"}) {
        const CFStringRef made = __CFStringMakeConstantString(text);
        ASSERT_TRUE(made);
        EXPECT_EQ(CFGetTypeID(made), CFStringGetTypeID());
        std::array<char, 64> buffer{};
        EXPECT_TRUE(CFStringGetCString(made, buffer.data(), 64, kCFStringEncodingUTF8));
        EXPECT_STREQ(buffer.data(), text);
    }
}

TEST(CFString, NeedsRoomForTheTerminatingZero)
{
    const CFStringRef made = CFSTR("grün");
    std::string buffer = "--------";
    for (const CFIndex capacity : {CFIndex(-1), CFIndex(0), CFIndex(1), CFIndex(5)}) {
        EXPECT_FALSE(CFStringGetCString(made, buffer.data(), capacity, kCFStringEncodingUTF8)) << capacity;
        EXPECT_EQ(buffer, "--------");
    }
    EXPECT_TRUE(CFStringGetCString(made, buffer.data(), 6, kCFStringEncodingUTF8));
    EXPECT_EQ(buffer, std::string("grün\0--", 8));
    EXPECT_FALSE(CFStringGetCString(made, nullptr, 64, kCFStringEncodingUTF8));
    EXPECT_FALSE(CFStringGetCString(made, buffer.data(), 8, 1));
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
    auto made = number(7);
    const auto holder = arrayOf(made.get());
    made.reset();
    EXPECT_EQ(CFGetTypeID(CFArrayGetValueAtIndex(holder.get(), 0)), CFNumberGetTypeID());
    CFRelease(nullptr);
    EXPECT_EQ(CFGetTypeID(nullptr), 0u);
}

TEST(CFType, CountsAcrossThreads)
{
    const auto made = number(7);
    std::array<std::thread, 4> threads;
    for (std::thread &thread : threads) {
        thread = std::thread([&made] {
            for (int round = 0; round < 10'000; ++round) {
                EXPECT_TRUE(arrayOf(made.get()));
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(CFGetTypeID(made.get()), CFNumberGetTypeID());
}

TEST(CFType, HasAnIDForEachKind)
{
    const auto array = arrayOf(kCFBooleanTrue);
    const std::vector<CFTypeID> ids{CFStringGetTypeID(), CFNumberGetTypeID(), CFBooleanGetTypeID(),
                                    CFGetTypeID(array.get())};
    for (std::size_t i = 0; i < ids.size(); ++i) {
        EXPECT_NE(ids[i], 0u);
        for (std::size_t j = 0; j < i; ++j) {
            EXPECT_NE(ids[i], ids[j]);
        }
    }
}

TEST(CFNumber, KeepsAThirtyTwoBitInteger)
{
    for (const std::int32_t value : {0, -7, 2147483647, -2147483647 - 1}) {
        const auto made = number(value);
        ASSERT_TRUE(made);
        EXPECT_EQ(CFGetTypeID(made.get()), CFNumberGetTypeID());
        std::int32_t kept = 1;
        EXPECT_TRUE(CFNumberGetValue(made.get(), kCFNumberSInt32Type, &kept));
        EXPECT_EQ(kept, value);
    }
}

TEST(CFNumber, ReadsBooleansToo)
{
    for (const bool truth : {false, true}) {
        const auto boolean = reinterpret_cast<CFNumberRef>(truth ? kCFBooleanTrue : kCFBooleanFalse);
        std::int32_t int32 = -1;
        EXPECT_TRUE(CFNumberGetValue(boolean, kCFNumberSInt32Type, &int32));
        EXPECT_EQ(int32, truth ? 1 : 0);
    }
}

TEST(CFNumber, RefusesOtherTypes)
{
    std::int64_t value = 3;
    constexpr CFNumberType int64Type = 4;
    constexpr CFNumberType float64Type = 6;
    for (const CFNumberType type : {CFNumberType(1), int64Type, float64Type}) {
        EXPECT_EQ(CFNumberCreate(kCFAllocatorDefault, type, &value), nullptr);
    }
    EXPECT_EQ(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, nullptr), nullptr);
    const auto made = number(5);
    EXPECT_FALSE(CFNumberGetValue(made.get(), 1, &value));
    EXPECT_FALSE(CFNumberGetValue(made.get(), int64Type, &value));
    EXPECT_FALSE(CFNumberGetValue(made.get(), float64Type, &value));
    EXPECT_FALSE(CFNumberGetValue(made.get(), kCFNumberSInt32Type, nullptr));
    EXPECT_FALSE(CFNumberGetValue(nullptr, kCFNumberSInt32Type, &value));
    EXPECT_FALSE(CFNumberGetValue(reinterpret_cast<CFNumberRef>(CFSTR("3")), kCFNumberSInt32Type, &value));
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
    EXPECT_EQ(CFDictionaryGetValue(made.get(), CFSTR("yes")), kCFBooleanTrue);
    EXPECT_EQ(CFDictionaryGetValue(made.get(), CFSTR("no")), kCFBooleanFalse);
    EXPECT_EQ(CFDictionaryGetValue(made.get(), CFSTR("YES")), nullptr);
    EXPECT_EQ(CFDictionaryGetValue(made.get(), nullptr), nullptr);
    EXPECT_EQ(CFDictionaryGetValue(nullptr, CFSTR("yes")), nullptr);
}

TEST(CFDictionary, KeepsItsValuesAlive)
{
    Owned<CFDictionaryRef> made;
    {
        const auto value = number(7);
        made = dictionary({CFSTR("key")}, {value.get()});
    }
    std::int32_t kept = 0;
    const auto value = static_cast<CFNumberRef>(CFDictionaryGetValue(made.get(), CFSTR("key")));
    EXPECT_TRUE(CFNumberGetValue(value, kCFNumberSInt32Type, &kept));
    EXPECT_EQ(kept, 7);
}

TEST(CFDictionary, KeepsTheFirstOfEqualKeys)
{
    const auto made = dictionary({CFSTR("key"), CFSTR("key")}, {kCFBooleanTrue, kCFBooleanFalse});
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
        const auto last = number(7);
        const void *values[] = {CFSTR("first"), last.get()};
        made.reset(CFArrayCreate(kCFAllocatorDefault, values, 2, &kCFTypeArrayCallBacks));
    }
    ASSERT_TRUE(made);
    EXPECT_EQ(CFArrayGetCount(made.get()), 2);
    EXPECT_EQ(CFArrayGetValueAtIndex(made.get(), 0), CFSTR("first"));
    EXPECT_EQ(CFGetTypeID(CFArrayGetValueAtIndex(made.get(), 1)), CFNumberGetTypeID());
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

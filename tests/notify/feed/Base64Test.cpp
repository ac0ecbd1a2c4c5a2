#include "notify/feed/Base64.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace
{

using Base64 = xtl::base64_impl<int>;

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char untouched = '#';

struct Decoded {
    bool whole = false;
    int length = 0;
    std::string buffer; ///< The whole room given; what was not written is `untouched`.

    friend bool operator==(const Decoded &, const Decoded &) = default;
};

std::ostream &operator<<(std::ostream &out, const Decoded &decoded)
{
    return out << (decoded.whole ? "whole" : "not whole") << ", " << decoded.length << ", \"" << decoded.buffer << '"';
}

Decoded decodedInto(int capacity, std::string_view input)
{
    Decoded result{false, capacity, std::string(static_cast<std::size_t>(capacity), untouched)};
    result.whole = Base64::decode(input.data(), static_cast<int>(input.size()),
                                  reinterpret_cast<unsigned char *>(result.buffer.data()), &result.length);
    return result;
}

std::string decoded(std::string_view input)
{
    const Decoded result = decodedInto(static_cast<int>(input.size()), input);
    EXPECT_TRUE(result.whole);
    return result.buffer.substr(0, static_cast<std::size_t>(result.length));
}

/// The rule once more, slowly: through text of binary digits.
Decoded decodedByDigits(int capacity, std::string_view input)
{
    std::string kept;
    std::copy_if(input.begin(), input.end(), std::back_inserter(kept),
                 [](char c) { return alphabet.find(c) != std::string_view::npos; });
    Decoded result{true, 0, std::string(static_cast<std::size_t>(capacity), untouched)};
    for (std::size_t start = 0; start < kept.size(); start += 4) {
        std::string digits;
        for (const char c : kept.substr(start, 4)) {
            const std::size_t value = alphabet.find(c);
            for (const std::size_t weight : {32, 16, 8, 4, 2, 1}) {
                digits += (value & weight) ? '1' : '0';
            }
        }
        const std::size_t bytes = digits.size() / 8;
        const auto length = static_cast<std::size_t>(result.length);
        result.whole = result.whole && length + bytes <= static_cast<std::size_t>(capacity);
        for (std::size_t i = 0; i < bytes && result.whole; ++i) {
            result.buffer[length + i] = static_cast<char>(std::stoi(digits.substr(8 * i, 8), nullptr, 2));
        }
        result.length += static_cast<int>(bytes);
    }
    return result;
}

TEST(Base64, TakesTheSixtyFourCharactersAndNoOthers)
{
    for (int c = 0; c < 256; ++c) {
        const std::size_t place = alphabet.find(static_cast<char>(c));
        const int expected = place == std::string_view::npos ? -1 : static_cast<int>(place);
        EXPECT_EQ(Base64::dechar(static_cast<unsigned char>(c)), expected) << c;
    }
}

TEST(Base64, DecodesTheVectorsOfTheStandard)
{
    constexpr std::pair<std::string_view, std::string_view> vectors[] = {
        {"", ""},
        {"Zg==", "f"},
        {"Zm8=", "fo"},
        {"Zm9v", "foo"},
        {"Zm9vYg==", "foob"},
        {"Zm9vYmE=", "fooba"},
        {"Zm9vYmFy", "foobar"},
    };
    for (const auto &[input, output] : vectors) {
        EXPECT_EQ(decoded(input), output) << input;
    }
}

TEST(Base64, GivesTwoBytesForThreeCharactersOneForTwoNoneForOne)
{
    EXPECT_EQ(decoded("Zm9vYmE"), "fooba");
    EXPECT_EQ(decoded("Zm9vYg"), "foob");
    EXPECT_EQ(decoded("Zm9vY"), "foo");
    EXPECT_EQ(decoded("Z"), "");
}

TEST(Base64, SkipsBlanksLineBreaksAndPaddingWhereverTheyStand)
{
    EXPECT_EQ(decoded(" Z m\r\n9\tv\n"), "foo");
    EXPECT_EQ(decoded("=Zm9v="), "foo");
    EXPECT_EQ(decoded("Zg==Zg=="), "f\x06\x60"); // Padding ends no group.
    EXPECT_EQ(decoded("Zm9v\xC3\xA9YmFy"), "foobar");
    EXPECT_EQ(decoded(std::string_view("Zm\0009v", 5)), "foo");
    EXPECT_EQ(decoded("===="), "");
}

TEST(Base64, LeavesOutAWholeGroupThatDoesNotFitAndSaysHowMuchThereIs)
{
    EXPECT_EQ(decodedInto(6, "Zm9vYmFy"), (Decoded{true, 6, "foobar"}));
    EXPECT_EQ(decodedInto(5, "Zm9vYmFy"), (Decoded{false, 6, "foo##"}));
    EXPECT_EQ(decodedInto(2, "Zm9v"), (Decoded{false, 3, "##"}));
    EXPECT_EQ(decodedInto(0, "Zg=="), (Decoded{false, 1, ""}));
    EXPECT_EQ(decodedInto(0, ""), (Decoded{true, 0, ""}));
    EXPECT_EQ(decodedInto(0, "Z"), (Decoded{true, 0, ""}));
}

TEST(Base64, WritesNothingAfterAGroupThatDidNotFit)
{
    // The last group's one byte would fit again.
    EXPECT_EQ(decodedInto(4, "Zm9vYmFyZg=="), (Decoded{false, 7, "foo#"}));
}

TEST(Base64, LeavesTheRestOfTheRoomAlone)
{
    EXPECT_EQ(decodedInto(8, "Zm9v"), (Decoded{true, 3, "foo#####"}));
    EXPECT_EQ(decodedInto(8, "Zm8="), (Decoded{true, 2, "fo######"}));
}

TEST(Base64, OnlyCountsWithoutAnOutput)
{
    for (const int capacity : {0, 100}) {
        int length = capacity;
        EXPECT_FALSE(Base64::decode("Zm9vYg==", 8, nullptr, &length));
        EXPECT_EQ(length, 4);
    }
    int length = 7;
    EXPECT_FALSE(Base64::decode("", 0, nullptr, &length));
    EXPECT_EQ(length, 0);
}

TEST(Base64, TouchesNothingWithoutInputOrLength)
{
    std::array<unsigned char, 3> output{'#', '#', '#'};
    int length = 3;
    EXPECT_FALSE(Base64::decode(nullptr, 4, output.data(), &length));
    EXPECT_FALSE(Base64::decode("Zm9v", 4, output.data(), nullptr));
    EXPECT_EQ(length, 3);
    EXPECT_EQ(output, (std::array<unsigned char, 3>{'#', '#', '#'}));
}

TEST(Base64, TakesANegativeLengthForAnEmptyInputOrNoRoom)
{
    std::array<unsigned char, 3> output{'#', '#', '#'};
    int length = 3;
    EXPECT_TRUE(Base64::decode("Zm9v", -1, output.data(), &length));
    EXPECT_EQ(length, 0);
    for (const int room : {-1, std::numeric_limits<int>::min()}) {
        length = room;
        EXPECT_FALSE(Base64::decode("Zm9vZm9v", 8, output.data(), &length));
        EXPECT_EQ(length, 6);
    }
    EXPECT_EQ(output, (std::array<unsigned char, 3>{'#', '#', '#'}));
}

TEST(Base64, AgreesWithASlowDecoderOnRandomInput)
{
    std::mt19937 random(20110520);
    const auto below = [&random](int end) { return std::uniform_int_distribution<int>(0, end - 1)(random); };
    for (int round = 0; round < 10'000; ++round) {
        // From clean to noise only, from empty to longer than a few lines.
        const int noise = below(4) == 0 ? 0 : below(101);
        std::string input(static_cast<std::size_t>(below(below(10) == 0 ? 2000 : 40)), ' ');
        std::generate(input.begin(), input.end(), [&] {
            return below(100) < noise ? static_cast<char>(below(256)) : alphabet[static_cast<std::size_t>(below(64))];
        });
        const int exact = decodedByDigits(0, input).length;
        const int capacity = std::max(0, below(2) == 0 ? exact + below(9) - 4 : below(exact + 10));
        ASSERT_EQ(decodedInto(capacity, input), decodedByDigits(capacity, input)) << "round " << round;
    }
}

} // namespace

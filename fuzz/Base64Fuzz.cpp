#include "fuzz/Check.h"
#include "notify/feed/Base64.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>

namespace
{

using Base64 = xtl::base64_impl<int>;

std::string decodedSlowly(const std::string &input)
{
    std::string output;
    std::uint32_t bits = 0;
    int characters = 0;
    const auto finishGroup = [&] {
        bits <<= 6 * (4 - characters);
        for (int i = 0; i < characters * 6 / 8; ++i) {
            output += static_cast<char>(bits >> (16 - 8 * i) & 0xff);
        }
        bits = 0;
        characters = 0;
    };
    for (const char c : input) {
        const std::int32_t value = Base64::dechar(static_cast<unsigned char>(c));
        if (value >= 0) {
            bits = bits << 6 | static_cast<std::uint32_t>(value);
            if (++characters == 4) {
                finishGroup();
            }
        }
    }
    finishGroup();
    return output;
}

} // namespace

/// The first byte is the room left beyond, or missing from, what the rest needs.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    const std::string input(reinterpret_cast<const char *>(data) + 1, size - 1);
    const std::string expected = decodedSlowly(input);
    const auto needed = static_cast<int>(expected.size());
    const int capacity = std::max(0, needed + static_cast<signed char>(data[0]));
    constexpr unsigned char untouched = 0xa5;
    const auto room = static_cast<std::size_t>(capacity);
    const auto output = std::make_unique<unsigned char[]>(room);
    std::fill_n(output.get(), room, untouched);
    int length = capacity;
    const bool whole = Base64::decode(input.data(), static_cast<int>(input.size()), output.get(), &length);
    check(length == needed);
    check(whole == (needed <= capacity));
    // Only whole groups are left out.
    const int written = whole ? needed : capacity - capacity % 3;
    check(std::equal(output.get(), output.get() + written, expected.begin(),
                     [](unsigned char a, char b) { return a == static_cast<unsigned char>(b); }));
    check(std::all_of(output.get() + written, output.get() + capacity, [](unsigned char c) { return c == untouched; }));
    return 0;
}

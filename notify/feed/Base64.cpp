#include "notify/feed/Base64.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace xtl
{

namespace
{

/// The six bits of a character at their place within a group's 24, for each of the four places.
using Table = std::array<std::uint32_t, 256>;

constexpr std::uint32_t outsideAlphabet = 0x80000000;

constexpr Table tableForPlace(unsigned place)
{
    constexpr char alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    Table table{};
    table.fill(outsideAlphabet);
    for (std::uint32_t value = 0; value < 64; ++value) {
        table[static_cast<unsigned char>(alphabet[value])] = value << (18 - 6 * place);
    }
    return table;
}

constexpr std::array<Table, 4> tables{tableForPlace(0), tableForPlace(1), tableForPlace(2), tableForPlace(3)};

} // namespace

template <typename Length>
std::int32_t base64_impl<Length>::dechar(unsigned char character) noexcept
{
    const std::uint32_t value = tables[3][character];
    return value == outsideAlphabet ? -1 : static_cast<std::int32_t>(value);
}

template <typename Length>
bool base64_impl<Length>::decode(const char *input, Length inputLength, unsigned char *output,
                                 Length *outputLength) noexcept
{
    if (!input || !outputLength) {
        return false;
    }
    const Length capacity = *outputLength;
    const auto *next = reinterpret_cast<const unsigned char *>(input);
    const auto *const end = next + std::max<Length>(inputLength, 0);
    Length count = 0;
    bool overflow = !output;

    while (next != end) {
        // The usual case: groups of four characters of the alphabet in a row that fit.
        std::ptrdiff_t groups = overflow ? 0 : std::min<std::ptrdiff_t>((end - next) / 4, (capacity - count) / 3);
        for (; groups > 0; --groups) {
            const std::uint32_t bits =
                tables[0][next[0]] | tables[1][next[1]] | tables[2][next[2]] | tables[3][next[3]];
            if (bits & outsideAlphabet) {
                break;
            }
            output[count] = static_cast<unsigned char>(bits >> 16);
            output[count + 1] = static_cast<unsigned char>(bits >> 8);
            output[count + 2] = static_cast<unsigned char>(bits);
            next += 4;
            count += 3;
        }

        // One group by the rule.
        std::uint32_t bits = 0;
        unsigned characters = 0;
        for (; next != end && characters < 4; ++next) {
            const std::uint32_t value = tables[characters][*next];
            if (value != outsideAlphabet) {
                bits |= value;
                ++characters;
            }
        }
        const Length bytes = static_cast<Length>(characters * 6 / 8);
        overflow = overflow || bytes > capacity - count;
        for (Length i = 0; i < bytes && !overflow; ++i) {
            output[count + i] = static_cast<unsigned char>(bits >> (16 - 8 * i));
        }
        count += bytes;
    }
    *outputLength = count;
    return !overflow;
}

template class base64_impl<int>;

} // namespace xtl

#include "bench/TableDecoders.h"

#include "notify/feed/Base64.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

namespace
{

using Base64 = xtl::base64_impl<int>;
using Table = std::array<std::uint32_t, 256>;

// Bits of no group: a word of three bytes leaves its lowest byte free.
constexpr std::uint32_t bad = 1;

/// The bits as they stand in memory when the word is stored whole.
std::array<Table, 4> characterTables()
{
    std::array<Table, 4> tables;
    for (unsigned place = 0; place < 4; ++place) {
        for (unsigned c = 0; c < 256; ++c) {
            const std::int32_t value = Base64::dechar(static_cast<unsigned char>(c));
            tables[place][c] = value < 0 ? bad : static_cast<std::uint32_t>(value) << (26 - 6 * place);
        }
    }
    return tables;
}

std::vector<std::uint16_t> pairTable()
{
    std::vector<std::uint16_t> table(65536, 0x8000);
    for (unsigned first = 0; first < 256; ++first) {
        for (unsigned second = 0; second < 256; ++second) {
            const std::int32_t high = Base64::dechar(static_cast<unsigned char>(first));
            const std::int32_t low = Base64::dechar(static_cast<unsigned char>(second));
            if (high >= 0 && low >= 0) {
                const unsigned char pair[] = {static_cast<unsigned char>(first), static_cast<unsigned char>(second)};
                std::uint16_t index = 0;
                std::memcpy(&index, pair, sizeof index);
                table[index] = static_cast<std::uint16_t>(high << 6 | low);
            }
        }
    }
    return table;
}

void storeBigEndian(std::uint32_t word, unsigned char *output)
{
    if constexpr (std::endian::native == std::endian::little) {
        word = __builtin_bswap32(word);
    }
    std::memcpy(output, &word, sizeof word);
}

} // namespace

std::size_t decodeByCharacters(const char *input, std::size_t length, unsigned char *output)
{
    static const std::array<Table, 4> tables = characterTables();
    const auto *next = reinterpret_cast<const unsigned char *>(input);
    const auto *const end = next + length;
    unsigned char *out = output;
    const auto word = [](const unsigned char *c) {
        return tables[0][c[0]] | tables[1][c[1]] | tables[2][c[2]] | tables[3][c[3]];
    };
    std::uint32_t all = 0;
    for (; end - next > 16; next += 16, out += 12) {
        const std::uint32_t words[] = {word(next), word(next + 4), word(next + 8), word(next + 12)};
        storeBigEndian(words[0], out);
        storeBigEndian(words[1], out + 3);
        storeBigEndian(words[2], out + 6);
        storeBigEndian(words[3], out + 9);
        all |= words[0] | words[1] | words[2] | words[3];
    }
    for (; next != end; next += 4, out += 3) {
        const std::uint32_t last = word(next);
        out[0] = static_cast<unsigned char>(last >> 24);
        out[1] = static_cast<unsigned char>(last >> 16);
        out[2] = static_cast<unsigned char>(last >> 8);
        all |= last;
    }
    return all & bad ? 0 : static_cast<std::size_t>(out - output);
}

std::size_t decodeByPairs(const char *input, std::size_t length, unsigned char *output)
{
    static const std::vector<std::uint16_t> table = pairTable();
    const char *next = input;
    const char *const end = input + length;
    unsigned char *out = output;
    std::uint32_t all = 0;
    for (; next != end; next += 4, out += 3) {
        std::uint16_t pairs[2];
        std::memcpy(pairs, next, sizeof pairs);
        const std::uint32_t high = table[pairs[0]];
        const std::uint32_t low = table[pairs[1]];
        const std::uint32_t word = high << 12 | low;
        out[0] = static_cast<unsigned char>(word >> 16);
        out[1] = static_cast<unsigned char>(word >> 8);
        out[2] = static_cast<unsigned char>(word);
        all |= high | low;
    }
    return all & 0x8000 ? 0 : static_cast<std::size_t>(out - output);
}

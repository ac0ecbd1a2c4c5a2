#pragma once

#include <cstdint>

/// A four-character code ("kvmc") as the 32-bit number that travels: the first character is the most significant byte.
consteval std::uint32_t fourCharCode(const char (&text)[5])
{
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i) {
        code = code << 8 | static_cast<unsigned char>(text[i]);
    }
    return code;
}

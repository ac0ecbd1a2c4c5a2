#pragma once

#include <QByteArray>

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

/// The code as text, for people: a character that cannot be printed is a question mark.
[[nodiscard]] inline QByteArray fourCharText(std::uint32_t code)
{
    QByteArray text;
    for (int shift = 24; shift >= 0; shift -= 8) {
        const auto character = static_cast<unsigned char>(code >> shift);
        text += character >= ' ' && character <= '~' ? static_cast<char>(character) : '?';
    }
    return text;
}

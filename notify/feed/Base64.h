#pragma once

#include <cstdint>

namespace xtl
{

/// Base64 (RFC 4648, section 4) as the feed's authors rely on it: padding, line breaks and whatever else is outside
/// the alphabet are skipped wherever they stand. `Length` is the type of the lengths: int, for inputs below 2 GiB.
/// Reentrant.
template <typename Length>
class base64_impl final
{
public:
    base64_impl() = delete;

    /// 0 to 63 for a character of the alphabet, -1 for any other, '=' included.
    [[nodiscard]] static std::int32_t dechar(unsigned char character) noexcept;

    /// Decodes `inputLength` characters into `output`, which has room for *outputLength bytes, and sets *outputLength
    /// to the size of the whole decoded data. True when all of it was written.
    ///
    /// What does not fit is left out by whole groups of four characters, and after the first such group nothing is
    /// written. A null `output` only counts, and answers false. A null `input` or `outputLength` answers false and
    /// touches nothing. A negative length is an empty input, or no room.
    static bool decode(const char *input, Length inputLength, unsigned char *output, Length *outputLength) noexcept;
};

extern template class base64_impl<int>;

} // namespace xtl

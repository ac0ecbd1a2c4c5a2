#pragma once

#include <cstddef>

/// Base64 decoders that know nothing but clean input: whole groups of the alphabet, room enough. They show how fast
/// looking characters up in tables can be. Each returns how many bytes it wrote, or 0 at the first other character.

/// Four tables of 256 entries, one for each place in a group, and a store of four bytes.
std::size_t decodeByCharacters(const char *input, std::size_t length, unsigned char *output);

/// One table of 65,536 entries for a pair of characters.
std::size_t decodeByPairs(const char *input, std::size_t length, unsigned char *output);

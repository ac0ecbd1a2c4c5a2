#pragma once

#include <cstdlib>

/// Ends the program, which the fuzzer reports together with the input, unless `holds`.
inline void check(bool holds)
{
    if (!holds) {
        std::abort();
    }
}

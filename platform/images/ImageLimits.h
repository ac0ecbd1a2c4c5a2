#pragma once

#include <cstdint>

/// The longest side of a picture that is read from an image file, in pixels. No icon is as large.
constexpr std::uint32_t maxImageSide = 1024;

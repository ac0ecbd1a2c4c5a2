#pragma once

/// The names of the product in this library: see platform/ProductTexts.h.
namespace ProductTexts
{

inline constexpr char16_t toolTip[] = u"Kivune Menu";
inline constexpr char16_t aboutEntry[] = u"About Kivune Server";

} // namespace ProductTexts

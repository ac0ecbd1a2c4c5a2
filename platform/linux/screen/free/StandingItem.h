#pragma once

#include <QRect>

#include <optional>

/// Where the status item stands by itself, for those who shall not cover it. Main thread only.
namespace StandingItem
{

namespace Internal
{
inline std::optional<QRect> place;
}

/// In device pixels of the root window; nothing while a panel has it.
inline void set(const std::optional<QRect> &place) noexcept
{
    Internal::place = place;
}

[[nodiscard]] inline std::optional<QRect> place() noexcept
{
    return Internal::place;
}

} // namespace StandingItem

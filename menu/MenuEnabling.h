#pragma once

#include <cstdint>
#include <span>

/// Whether `code` is in the service's list of allowed commands.
[[nodiscard]] bool is_action(std::uint32_t code, std::span<const std::uint32_t> allowed) noexcept;

/// Whether the menu entry with this code can be chosen under the service's flags (MenuFlag) and allowed commands.
[[nodiscard]] bool isEnabled(std::uint32_t code, std::uint32_t flags, std::span<const std::uint32_t> allowed) noexcept;

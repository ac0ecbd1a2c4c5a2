#pragma once

#include <cstdint>

/// After how many seconds the pop-up of a message of that type (a MessageType) is to close by itself, by the user's
/// setting (a CloseSetting): 0 for the pop-up's own default, -1 for never. Updates stay until the user closes them.
[[nodiscard]] std::int32_t closeTimeout(std::int32_t messageType, std::int32_t notificationClose) noexcept;

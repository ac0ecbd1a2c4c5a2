#pragma once

#include <optional>
#include <sys/types.h>

/// The process of the agent on the display that DISPLAY names: a user may have several displays, each with an agent of
/// its own, on one bus. Nothing when there is no such display, no agent on it, or when the X server does not tell.
[[nodiscard]] std::optional<pid_t> agentOfDisplay();

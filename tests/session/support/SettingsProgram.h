#pragma once

#include "tests/session/support/Agent.h"
#include "tests/session/support/Desktop.h"

/// What the server's settings program does to the agent's settings.
namespace SettingsProgram
{

/// The path of the file of the user's settings.
[[nodiscard]] QString file(const Desktop &desktop);
/// Writes the user's settings, by their codes, with every kind of message to be shown.
void write(const Desktop &desktop, int show, int close, int repeat);
/// The id that the agent has put among the settings; "0" when it has put none.
[[nodiscard]] QString lastMessageId(const Desktop &desktop);
/// Says that the settings have changed; returns once the agent must have heard it.
void announce(Desktop &desktop, const Agent &agent);

} // namespace SettingsProgram

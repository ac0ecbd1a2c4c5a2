#pragma once

#include <string_view>

/// Waits for who reads. Ends the process, with status 1, when that has gone.
void writeToStandardOutput(std::string_view bytes) noexcept;

/// One line, with the program's name before it. Standard error is the agent's: what is not taken at once is lost, for a
/// reader that has stopped must not keep this program.
void sayOnStandardError(std::string_view text);

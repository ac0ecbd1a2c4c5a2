#pragma once

#include <QtGlobal>

/// What the kernel says of the memory of another process, in kB; 0 when there is no such process.
namespace ProcessMemory
{

/// The most that it had in memory at one time so far.
[[nodiscard]] qint64 peakKilobytes(qint64 pid);
/// What it shares with no other process, and what would come back if it ended.
[[nodiscard]] qint64 privateKilobytes(qint64 pid);

} // namespace ProcessMemory

#pragma once

#include <QtGlobal>

/// What the kernel says of the memory of another process, in kB; 0 when there is no such process.
namespace ProcessMemory
{

/// The most that it had in memory at one time so far.
[[nodiscard]] qint64 peakKilobytes(qint64 pid);
/// Has the peak of this process count anew, from what is in memory now. False when the kernel does not.
[[nodiscard]] bool forgetPeak();
/// What it alone has and has written to. Pages of files are not counted: whether they are private depends on the other
/// programs that run.
[[nodiscard]] qint64 privateKilobytes(qint64 pid);

/// How many heaps its threads have beside the main one, by the GNU C library: each lies at a multiple of 64 MB, in a
/// reservation of that size.
[[nodiscard]] int heapsOfThreads(qint64 pid);

/// Whether it has memory that it can both write to and run.
[[nodiscard]] bool hasCodeThatItWrote(qint64 pid);

} // namespace ProcessMemory

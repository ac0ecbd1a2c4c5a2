#pragma once

#include <QtGlobal>

#include <cstddef>

/// How much may wait.
namespace QueueLimits
{

/// Of instant records: nobody reads so many.
inline constexpr int maxHints = 100;

/// Of records in the queue.
inline constexpr std::size_t maxRecords = 1000;
/// Of bytes that they take in the cache file: less than may be in a file that can be read.
inline constexpr qsizetype maxBytes = qsizetype{15} * 1024 * 1024;

} // namespace QueueLimits

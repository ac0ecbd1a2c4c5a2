#pragma once

#include <unistd.h>

/// Sleeps for that many microseconds, as usleep(3) does.
using SleepFunction = int (*)(useconds_t microseconds);

/// Waits until the Dock runs, that is until there is a status bar to put the item in: 30 attempts at most, with a
/// second of sleep after each that failed. Then start-up goes on all the same. Blocks, but for no longer once the
/// session ends (GraphicalSession::isEnding): a signal interrupts the sleep.
void __wait_dock(SleepFunction sleep = ::usleep);

/// One pass over the running processes: whether the Dock is among them. A Process Manager error ends the pass.
[[nodiscard]] bool __find_dock();

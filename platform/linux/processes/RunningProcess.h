#pragma once

#include <sys/types.h>

/// Whether a process of that ID runs, whoever's it is. One that has ended but was not waited for yet (a zombie) does
/// not, and the ID of a mere thread names no process.
[[nodiscard]] bool isRunningProcess(pid_t pid);

#pragma once

#include <functional>
#include <sys/types.h>

/// Watches a running process from now on. What is returned, and may be copied, tells whether it has ended, also when
/// another one has its number since; false as well where the kernel gives nothing to tell it by.
[[nodiscard]] std::function<bool()> watchProcess(pid_t pid);

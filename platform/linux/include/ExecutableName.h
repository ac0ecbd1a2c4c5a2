#pragma once

#include <QByteArray>

#include <sys/types.h>

/// The file name of the program that a process runs, also when that file has been replaced or removed since; the
/// kernel's short name for it when the file may not be seen. Empty when there is no such process.
[[nodiscard]] QByteArray executableName(pid_t pid);

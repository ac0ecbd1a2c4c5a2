#pragma once

#include <QString>

/// The operating system's version as a dotted number ("10.6.8"): the "ProductVersion" of the property list `file`, nil
/// when it is unreadable or has none; where there is no such file, systemVersionWithoutFile().
[[nodiscard]] QString systemVersion(const QString &file);

/// The version that the system states elsewhere: on Linux the kernel's, nil on macOS.
[[nodiscard]] QString systemVersionWithoutFile();

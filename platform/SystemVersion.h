#pragma once

#include <QString>

/// Where the one system that has it keeps its version.
inline constexpr char standardSystemVersionFile[] = "/System/Library/CoreServices/SystemVersion.plist";

/// The operating system's version as a dotted number ("10.6.8"): the "ProductVersion" of the property list `file`; nil
/// when there is no such file, or it is unreadable or has none. The feed's bounds are those of the one system that has
/// it: the number of another system's kernel means nothing to them.
[[nodiscard]] QString systemVersion(const QString &file);

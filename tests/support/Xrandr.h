#pragma once

#include "tests/support/ChildProcess.h"

#include <optional>

/// Runs xrandr to its end without the event loop: nobody has told Qt of what it changed then. What it has printed;
/// nothing when it fails.
[[nodiscard]] inline std::optional<QByteArray> xrandr(const QStringList &arguments)
{
    ChildProcess tool;
    const bool ends = tool.start(QStringLiteral("xrandr"), arguments) && tool.process().waitForFinished();
    return ends && tool.exitCode() == 0 ? std::optional(tool.output()) : std::nullopt;
}

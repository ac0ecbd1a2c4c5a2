#pragma once

#include <QStringList>

#include <cstdint>
#include <optional>

/// A size of a display, in pixels.
struct DisplaySize {
    std::uint16_t width = 0;
    std::uint16_t height = 0;

    bool operator==(const DisplaySize &) const = default;
};

/// Either the size that the arguments ask for, or why they ask for none.
struct DisplayArguments {
    std::optional<DisplaySize> size;
    QString reason;
};

/// Reads "set -w W -h H -c", the options in any order. A side has at least 32 pixels.
[[nodiscard]] DisplayArguments parseDisplayArguments(const QStringList &arguments);

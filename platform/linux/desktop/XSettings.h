#pragma once

#include <QByteArray>
#include <QHash>

#include <cstdint>
#include <optional>

/// What the settings daemon of an X session says, by the freedesktop.org XSETTINGS protocol 0.5. Colours are left out:
/// nobody here asks for one.
struct XSettings {
    QHash<QByteArray, std::int32_t> numbers;
    QHash<QByteArray, QByteArray> texts; ///< In UTF-8, as they came.

    [[nodiscard]] std::optional<std::int32_t> number(const char *name) const;
    /// Empty when there is no such text.
    [[nodiscard]] QByteArray text(const char *name) const { return texts.value(name); }
};

/// More than this is not read.
inline constexpr std::uint32_t maxXSettingsBytes = 256 * 1024;

/// Reads the property _XSETTINGS_SETTINGS, which names its byte order. Nothing when it is malformed, cut short or
/// longer than maxXSettingsBytes: half of what somebody says may mean something else. Bytes behind the last setting are
/// ignored. Reentrant.
[[nodiscard]] std::optional<XSettings> readXSettings(const QByteArray &property);

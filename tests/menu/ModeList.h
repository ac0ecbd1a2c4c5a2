#pragma once

#include <Carbon/Carbon.h>
#include <QJsonArray>

/// The mode dictionaries that a display would tell of, made from a JSON array of objects; null stands for a missing
/// element. The caller's to release.
[[nodiscard]] CFArrayRef newModeList(const QJsonArray &modes);

#pragma once

#include <QPixmap>

#include <cstdint>

/// The picture of a message's type (KivNotification::messageType), square, for a place of `side` points: from the
/// bundle, in as many pixels as the display has there. Null when the bundle has none that can be read. Main thread
/// only.
[[nodiscard]] QPixmap messageTypeIcon(std::int32_t messageType, int side, qreal devicePixelRatio);

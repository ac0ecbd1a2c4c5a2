#pragma once

#include <QPixmap>

/// The picture beside an alert's text: a white sign on a round ground. Drawn here, since Qt's own pictures are small
/// and those of a desktop's theme are not there in every session.
enum class AlertSign { Information, Critical };

/// `side` is in device-independent pixels.
[[nodiscard]] QPixmap alertIcon(AlertSign sign, int side, qreal devicePixelRatio);

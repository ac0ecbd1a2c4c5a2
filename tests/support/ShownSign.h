#pragma once

#include "platform/alert/AlertIcon.h"

#include <QLabel>

/// Whether that sign stands in an alert.
[[nodiscard]] inline bool showsSign(const QWidget &alert, AlertSign sign)
{
    for (const QLabel *label : alert.findChildren<QLabel *>()) {
        if (const QPixmap shown = label->pixmap(); !shown.isNull()) {
            const int side = qRound(shown.deviceIndependentSize().width());
            return shown.toImage() == alertIcon(sign, side, shown.devicePixelRatio()).toImage();
        }
    }
    return false;
}

#pragma once

#include "platform/images/IconDrawing.h"

#include <QIcon>
#include <QRgb>
#include <QString>

/// What a status item shows, in whatever form.
struct StatusItemLook {
    QIcon image;
    QRgb plate = 0xffececec; ///< What the image lies on where the item stands alone.
    bool enabled = true;
    QString toolTip;
    QString title;
    QString stateText;

    [[nodiscard]] IconLook iconLook() const noexcept { return enabled ? IconLook::Normal : IconLook::Faded; }
};

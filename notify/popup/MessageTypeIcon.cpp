#include "notify/popup/MessageTypeIcon.h"

#include "notify/ProductTexts.h"
#include "notify/record/KivNotification.h"
#include "platform/Bundle.h"
#include "platform/images/IcnsReader.h"

#include <QFile>

#include <cmath>
#include <tuple>

namespace
{

QString iconName(std::int32_t messageType)
{
    switch (messageType) {
    case kTypeUpdate:
        return QStringLiteral("update");
    case kTypeNotice:
        return QStringLiteral("information");
    case kTypeWarning:
        return QStringLiteral("warning");
    default:
        return ProductTexts::popUpIcon;
    }
}

/// Null when there is none.
QImage readIcon(std::int32_t messageType, int side, qreal devicePixelRatio)
{
    QFile file(Bundle::main().pathForResource(iconName(messageType), QStringLiteral("icns")));
    if (file.fileName().isEmpty() || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    const int pixels = static_cast<int>(std::ceil(side * devicePixelRatio));
    const QImage image = readIcns(file.readAll(), pixels);
    if (image.isNull()) {
        return {};
    }
    QImage scaled = image.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    scaled.setDevicePixelRatio(devicePixelRatio);
    return scaled;
}

} // namespace

QPixmap messageTypeIcon(std::int32_t messageType, int side, qreal devicePixelRatio)
{
    // The last one is kept. To decode and scale it takes as long as half of all else that a pop-up needs until it is
    // shown, and most pop-ups are of one type. Not in Qt's pixmap cache, whose clean-up would wake the process up.
    static std::tuple<std::int32_t, int, qreal> kind;
    static QImage kept; // A pixmap must not outlive the application object.
    if (const std::tuple asked(messageType, side, devicePixelRatio); kept.isNull() || asked != kind) {
        kind = asked;
        kept = readIcon(messageType, side, devicePixelRatio);
    }
    return QPixmap::fromImage(kept);
}

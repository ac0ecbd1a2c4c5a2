#include "platform/linux/workarounds/LargerImages.h"

#include <QByteArray>

void keepQtFromLookingForLargerImages()
{
    qputenv("QT_HIGHDPI_DISABLE_2X_IMAGE_LOADING", "1");
}

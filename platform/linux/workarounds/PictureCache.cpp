#include "platform/linux/workarounds/PictureCache.h"

#include <QPixmapCache>

void keepQtFromCachingPictures()
{
    QPixmapCache::setCacheLimit(0);
}

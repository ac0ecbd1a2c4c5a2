#include "platform/linux/workarounds/PixmapCache.h"

#include <QPixmapCache>

void keepQtFromCachingPixmaps()
{
    QPixmapCache::setCacheLimit(0);
}

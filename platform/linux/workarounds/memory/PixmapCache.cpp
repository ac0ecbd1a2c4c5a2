#include "platform/linux/workarounds/memory/PixmapCache.h"

#include <QPixmapCache>

void keepQtFromCachingPixmaps()
{
    QPixmapCache::setCacheLimit(0);
}

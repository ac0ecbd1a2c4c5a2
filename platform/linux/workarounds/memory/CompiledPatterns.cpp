#include "platform/linux/workarounds/memory/CompiledPatterns.h"

#include <QByteArray>

void keepQtFromCompilingPatterns()
{
    qputenv("QT_ENABLE_REGEXP_JIT", "0");
}

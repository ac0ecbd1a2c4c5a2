#include "platform/linux/workarounds/CompiledPatterns.h"

#include <QByteArray>

void keepQtFromCompilingPatterns()
{
    qputenv("QT_ENABLE_REGEXP_JIT", "0");
}

#include "platform/SystemVersion.h"

QString systemVersionWithoutFile()
{
    return {};
}

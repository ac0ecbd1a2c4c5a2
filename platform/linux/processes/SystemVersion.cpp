#include "platform/SystemVersion.h"

#include "platform/linux/processes/KernelVersion.h"

#include <sys/utsname.h>

QString systemVersionWithoutFile()
{
    utsname system{};
    return ::uname(&system) == 0 ? kernelVersion(QString::fromLatin1(system.release)) : QString();
}

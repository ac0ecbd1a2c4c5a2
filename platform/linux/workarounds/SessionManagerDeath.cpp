#include "platform/linux/workarounds/SessionManagerDeath.h"

#include <X11/ICE/ICElib.h>

namespace
{
void (*endOfTheSession)() = nullptr;
}

void endInOrderWhenTheSessionManagerDies(void (*end)())
{
    endOfTheSession = end;
    IceSetIOErrorHandler([](IceConn) { endOfTheSession(); });
}

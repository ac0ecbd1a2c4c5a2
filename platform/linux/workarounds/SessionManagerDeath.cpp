#include "platform/linux/workarounds/SessionManagerDeath.h"

#include <QCoreApplication>

#include <X11/ICE/ICElib.h>

void endInOrderWhenTheSessionManagerDies()
{
    IceSetIOErrorHandler([](IceConn) { QCoreApplication::exit(); });
}

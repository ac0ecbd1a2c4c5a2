#include "platform/linux/workarounds/bus/PortalQuestion.h"

#include <QByteArray>

namespace
{
constexpr char variable[] = "QT_NO_XDG_DESKTOP_PORTAL";
bool isOurs = false;
} // namespace

void PortalQuestion::avoid()
{
    isOurs = !qEnvironmentVariableIsSet(variable);
    if (isOurs) {
        qputenv(variable, "1");
    }
}

void PortalQuestion::allow()
{
    if (isOurs) {
        qunsetenv(variable);
    }
}

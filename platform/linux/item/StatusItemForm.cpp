#include "platform/linux/item/StatusItemForm.h"

namespace
{

bool isPossible(StatusItemForm form, StatusItemHosts hosts)
{
    switch (form) {
    case StatusItemForm::None:
        return true;
    case StatusItemForm::Tray:
        return hosts.tray;
    case StatusItemForm::Notifier:
        return hosts.notifier;
    case StatusItemForm::Strip:
        return true;
    }
    return false;
}

} // namespace

StatusItemForm wantedForm(StatusItemHosts hosts)
{
    if (hosts.tray && !(hosts.trayIsProxy && hosts.notifier)) {
        return StatusItemForm::Tray;
    }
    return hosts.notifier ? StatusItemForm::Notifier : StatusItemForm::Strip;
}

StatusItemForm pickForm(StatusItemHosts hosts, StatusItemForm present, Settling settling)
{
    const StatusItemForm wanted = wantedForm(hosts);
    // The host behind a proxy may just not be known yet.
    if ((wanted == StatusItemForm::Tray && !hosts.trayIsProxy) || settling == Settling::Over) {
        return wanted;
    }
    return isPossible(present, hosts) ? present : StatusItemForm::None;
}

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

const char *description(StatusItemForm form)
{
    switch (form) {
    case StatusItemForm::None:
        return "nowhere";
    case StatusItemForm::Tray:
        return "in the tray";
    case StatusItemForm::Notifier:
        return "with the StatusNotifierItem host";
    case StatusItemForm::Strip:
        return "by itself at the top of the screen";
    }
    return "";
}

QByteArray description(StatusItemHosts hosts)
{
    const char *const tray = hosts.trayIsProxy ? "a proxy for a" : hosts.tray ? "a" : "no";
    return QByteArray(tray) + " tray and " + (hosts.notifier ? "a" : "no") + " StatusNotifierItem host";
}

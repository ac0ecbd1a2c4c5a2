#include "platform/linux/item/StatusItemForm.h"

namespace
{

bool hasTray(StatusItemHosts hosts)
{
    return hosts.tray && !(hosts.trayIsProxy && hosts.notifier == NotifierHosts::Shared);
}

bool isPossible(StatusItemForm form, StatusItemHosts hosts)
{
    switch (form) {
    case StatusItemForm::None:
        return true;
    case StatusItemForm::Tray:
        return hasTray(hosts);
    case StatusItemForm::Notifier:
        return hosts.notifier == NotifierHosts::Ours;
    case StatusItemForm::Strip:
        return true;
    }
    return false;
}

} // namespace

StatusItemForm wantedForm(StatusItemHosts hosts)
{
    const bool hasNotifier = hosts.notifier == NotifierHosts::Ours;
    if (hasTray(hosts) && !(hosts.trayIsProxy && hasNotifier)) {
        return StatusItemForm::Tray;
    }
    return hasNotifier ? StatusItemForm::Notifier : StatusItemForm::Strip;
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
    const char *const shared = hosts.notifier == NotifierHosts::Shared ? " on another display" : "";
    return QByteArray(tray) + " tray and " + (hosts.notifier == NotifierHosts::None ? "no" : "a") +
           " StatusNotifierItem host" + shared;
}

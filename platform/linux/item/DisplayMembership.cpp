#include "platform/linux/item/DisplayMembership.h"

#include "platform/linux/include/XConnection.h"

#include <QFile>
#include <QList>

#include <xcb/res.h>

#include <algorithm>

namespace
{

/// ":7" of ":7", ":7.0" and "unix:7".
QByteArray withoutScreen(const QByteArray &display)
{
    const qsizetype colon = display.lastIndexOf(':');
    const qsizetype point = display.indexOf('.', colon + 1);
    const QByteArray host = display.left(colon);
    return (host == "unix" ? QByteArray() : host) + display.mid(colon, point < 0 ? -1 : point - colon);
}

bool isClientOfTheXServer(pid_t pid)
{
    xcb_connection_t *x = XConnection::get();
    if (!XConnection::extension(x, xcb_res_id)) {
        return false;
    }
    const xcb_res_client_id_spec_t everyClient{XCB_NONE, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    const auto cookie = xcb_res_query_client_ids(x, 1, &everyClient);
    const XcbReply<xcb_res_query_client_ids_reply_t> reply(xcb_res_query_client_ids_reply(x, cookie, nullptr));
    if (!reply) {
        return false;
    }
    for (auto it = xcb_res_query_client_ids_ids_iterator(reply.get()); it.rem > 0; xcb_res_client_id_value_next(&it)) {
        if (xcb_res_client_id_value_value_length(it.data) > 0 &&
            static_cast<pid_t>(*xcb_res_client_id_value_value(it.data)) == pid) {
            return true;
        }
    }
    return false;
}

QByteArray environmentOf(pid_t pid)
{
    QFile file(QStringLiteral("/proc/%1/environ").arg(pid));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

DisplayNames displayNames(const QByteArray &environment)
{
    DisplayNames names;
    const auto take = [](const QByteArray &assignment, const QByteArray &variable, QByteArray &value) {
        // Of two assignments getenv() finds the first.
        if (value.isEmpty() && assignment.startsWith(variable)) {
            value = assignment.mid(variable.size());
        }
    };
    const QList<QByteArray> assignments = environment.split('\0');
    for (const QByteArray &assignment : assignments) {
        take(assignment, QByteArrayLiteral("DISPLAY="), names.display);
        take(assignment, QByteArrayLiteral("WAYLAND_DISPLAY="), names.waylandDisplay);
    }
    return names;
}

bool isSameDisplay(const DisplayNames &one, const DisplayNames &other)
{
    if (!one.display.isEmpty() && !other.display.isEmpty()) {
        return withoutScreen(one.display) == withoutScreen(other.display);
    }
    return !one.waylandDisplay.isEmpty() && one.waylandDisplay == other.waylandDisplay;
}

DisplayMembership membershipByNames(const DisplayNames &process, const DisplayNames &own)
{
    if (isSameDisplay(process, own)) {
        return DisplayMembership::OfThis;
    }
    const auto namesNone = [](const DisplayNames &names) {
        return names.display.isEmpty() && names.waylandDisplay.isEmpty();
    };
    return namesNone(process) || namesNone(own) ? DisplayMembership::Unknown : DisplayMembership::OfAnother;
}

DisplayMembership membershipOf(pid_t pid)
{
    if (!XConnection::get() || isClientOfTheXServer(pid)) {
        return DisplayMembership::OfThis;
    }
    return membershipByNames(displayNames(environmentOf(pid)), {qgetenv("DISPLAY"), qgetenv("WAYLAND_DISPLAY")});
}

DisplayMembership membershipOfAll(std::span<const DisplayMembership> each)
{
    for (const DisplayMembership decisive : {DisplayMembership::OfAnother, DisplayMembership::OfThis}) {
        if (std::ranges::find(each, decisive) != each.end()) {
            return decisive;
        }
    }
    return DisplayMembership::Unknown;
}

#include "platform/linux/SessionManagerMessages.h"

#include <QList>

#include <X11/ICE/ICElib.h>
#include <poll.h>

namespace
{
QList<IceConn> connections;

bool hasMessage(IceConn connection)
{
    pollfd readable{IceConnectionNumber(connection), POLLIN, 0};
    return ::poll(&readable, 1, 0) == 1;
}
} // namespace

void SessionManagerMessages::hear()
{
    IceAddConnectionWatch(
        [](IceConn connection, IcePointer, Bool isNew, IcePointer *) {
            if (isNew) {
                connections.append(connection);
            } else {
                connections.removeOne(connection);
            }
        },
        nullptr);
}

void SessionManagerMessages::handle()
{
    // A copy: a message may be the last one of its connection.
    for (const IceConn connection : QList(connections)) {
        if (hasMessage(connection)) {
            IceProcessMessages(connection, nullptr, nullptr);
        }
    }
}

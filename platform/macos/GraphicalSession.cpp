#include "platform/GraphicalSession.h"

QString GraphicalSession::prepare()
{
    // launchd starts the agent in a graphical session or not at all.
    return {};
}

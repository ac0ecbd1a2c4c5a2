#pragma once

#include <QStringList>

/// "kivservice attach [--pid N]": claims the agent, then takes lines on standard input (tools/kivservice/ServiceLine.h)
/// until its end, prints one line for each event from the agent, and carries out what a VNC server can do of it
/// (tools/kivservice/VncSession.h), with a line on that. `arguments` are those after "attach".
/// The exit status: 0 after "quit" or the end of the input, 2 for wrong usage, 1 for all that fails, with one line on
/// standard error.
[[nodiscard]] int attachCommand(const QStringList &arguments);

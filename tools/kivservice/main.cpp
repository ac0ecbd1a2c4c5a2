#include "platform/LogOutput.h"
#include "tools/kivservice/AttachCommand.h"
#include "tools/kivservice/DisplayArguments.h"
#include "tools/kivservice/DisplaySwitcher.h"
#include "tools/kivservice/SettingsCommand.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>

namespace
{
constexpr char usage[] = R"(kivservice: the reference service, the other end of the menu agent's link

  kivservice attach [--pid N]

Claims the agent of this session's bus, or the one with process ID N. Then takes lines on standard input:

  flags 6                the menu's flags: 2 shows the status item, 4 makes it active
  actions 32793 32796    the commands that the menu allows ("actions none": none)
  hint TEXT              shows TEXT to the user at once
  quit                   ends the agent

and prints one line for each event of the agent, such as "meoa 32793 Minimize". A confirmed disconnect of a TigerVNC
session puts its viewers out; a VNC server cannot do the rest. A second line says how that went. Ends with its input.

  kivservice dspcmd set -w WIDTH -h HEIGHT -c

Switches the current session's main display to that size in pixels.

  kivservice settings [KEY [VALUE]]

Prints the user's notification settings, or the one under that key, or sets it and tells the agents of the session.
)";

int displayCommand(const QStringList &arguments)
{
    const DisplayArguments parsed = parseDisplayArguments(arguments);
    const QString failure = parsed.size ? switchMainDisplay(*parsed.size) : parsed.reason;
    if (failure.isEmpty()) {
        return 0;
    }
    std::fprintf(stderr, "kivservice: %s\n", qPrintable(failure));
    return parsed.size ? 1 : 2;
}

int run(QStringList arguments)
{
    const QString command = arguments.isEmpty() ? QString() : arguments.takeFirst();
    if (command == QLatin1String("attach")) {
        return attachCommand(arguments);
    }
    if (command == QLatin1String("dspcmd")) {
        return displayCommand(arguments);
    }
    if (command == QLatin1String("settings")) {
        return settingsCommand(arguments);
    }
    const bool askedForHelp = command == QLatin1String("--help") || command == QLatin1String("help");
    std::fputs(usage, askedForHelp ? stdout : stderr);
    return askedForHelp ? 0 : 2;
}
} // namespace

int main(int argc, char **argv)
{
    LogOutput::useStandardError();
    const QCoreApplication application(argc, argv);
    const int status = run(QCoreApplication::arguments().mid(1));
    // Not by exit(): what the bus says while QtDBus is taken apart ends in a warning of a type that is known no more,
    // which people would read as the reason.
    std::fflush(nullptr);
    std::quick_exit(status);
}

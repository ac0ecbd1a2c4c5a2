#pragma once

#include "tools/kivservice/ServiceLine.h"

#include <Carbon/Carbon.h>
#include <QByteArray>

#include <functional>

/// The service's end of the link with one agent: owns the agent, commands it and hears what it asks for.
/// Main thread only; one at a time, since a process has one handler for the link's events.
class AttachedService final
{
public:
    /// Gets one line, without its end, for each event from the agent: "meoa 32793 Minimize".
    using EventPrinter = std::function<void(const QByteArray &line)>;

    /// Gets each command (MenuCode) that the agent asks for, after its line.
    using ActionHandler = std::function<void(std::uint32_t code)>;

    AttachedService(ProcessSerialNumber agent, EventPrinter print, ActionHandler carryOut);
    ~AttachedService();
    AttachedService(const AttachedService &) = delete;
    AttachedService &operator=(const AttachedService &) = delete;

    /// Makes this process the agent's owner. Every call here is false when the agent cannot be reached.
    [[nodiscard]] bool claim();
    /// Sends what a line asks for: one of these for each kind of line that the agent is to hear of. A kind without one
    /// does not compile where lines are carried out (tools/kivservice/AttachCommand.cpp).
    [[nodiscard]] bool send(const ServiceLine::Flags &line);
    [[nodiscard]] bool send(const ServiceLine::Actions &line);
    [[nodiscard]] bool send(const ServiceLine::Hint &line);
    [[nodiscard]] bool send(const ServiceLine::Quit &line);

private:
    static OSErr onEvent(const AppleEvent *event, AppleEvent *reply, SRefCon refcon);
    OSErr onEvent(const AppleEvent &event);

    /// Sends a command with the parameters that `fill` puts.
    [[nodiscard]] bool sendEvent(std::uint32_t command, const std::function<void(AppleEvent &)> &fill = nullptr);

    ProcessSerialNumber m_self{};
    ProcessSerialNumber m_agent;
    EventPrinter m_print;
    ActionHandler m_carryOut;
};

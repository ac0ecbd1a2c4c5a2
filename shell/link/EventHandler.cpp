#include "shell/link/EventHandler.h"

#include "platform/FourCharCode.h"
#include "platform/LogCategories.h"
#include "platform/SystemCallback.h"
#include "platform/processes/ProcessWatch.h"
#include "shell/ProcessState.h"
#include "shell/link/EventCodes.h"
#include "shell/link/EventLink.h"
#include "shell/link/ServiceCommands.h"

#include <functional>
#include <optional>

namespace
{
struct Claim {
    ProcessSerialNumber owner;
    SInt32 pid;
    std::function<bool()> hasEnded;
};
std::optional<Claim> claim;

void setOwner(const ProcessSerialNumber &sender)
{
    __owpsn = sender;
    const std::optional<pid_t> pid = processId(sender); // It may have ended since it sent the claim.
    // Where a serial number tells no process ID, one that has ended is nobody's.
    claim = Claim{sender, pid.value_or(static_cast<pid_t>(sender.lowLongOfPSN)),
                  pid ? watchProcess(*pid) : [] { return true; }};
}

/// Whether somebody else speaks in the owner's name now that the owner has ended. Its own last words are handled after
/// its end, and so are those of a sender that is not known.
bool isInADeadOwnersName(const AppleEvent *event)
{
    SInt32 sender = 0;
    return claim && kivmAESameProcess(&claim->owner, &__owpsn) && claim->hasEnded() &&
           AEGetAttributePtr(event, keySenderPIDAttr, typeSInt32, nullptr, &sender, sizeof sender, nullptr) == noErr &&
           (sender != claim->pid || processId(__owpsn));
}

/// Reads a parameter that every event has.
OSErr read(const AppleEvent *event, AEKeyword keyword, DescType type, void *value, Size size)
{
    const OSErr error = AEGetParamPtr(event, keyword, type, nullptr, value, size, nullptr);
    if (error != noErr) {
        qCDebug(linkLog, "refused an event: its parameter %s cannot be read, error %d",
                fourCharText(keyword).constData(), error);
    }
    return error;
}

unsigned int processOf(const ProcessSerialNumber &process)
{
    return process.lowLongOfPSN;
}
} // namespace

namespace
{
OSErr handle(const AppleEvent *event)
{
    if (!event) {
        return errAEEventFailed;
    }
    std::uint32_t command = 0;
    if (const OSErr error = read(event, kMenuParamCommand, typeSInt32, &command, sizeof command); error != noErr) {
        return error;
    }
    ProcessSerialNumber sender{};
    if (const OSErr error = read(event, kMenuParamSender, typeProcessSerialNumber, &sender, sizeof sender);
        error != noErr) {
        return error;
    }
    const QByteArray name = linkLog().isDebugEnabled() ? fourCharText(command) : QByteArray();
    // The cheap test first: whoever is not the owner may send as many as he likes.
    if (command != kMenuEvtSetOwner && !kivmAESameProcess(&sender, &__owpsn)) {
        qCDebug(linkLog, "refused %s of process %u: process %u owns this agent", name.constData(), processOf(sender),
                processOf(__owpsn));
        return noErr;
    }
    if (kivmAEIsForged(event, &sender)) {
        qCDebug(linkLog, "refused %s: it does not come from process %u, which it names", name.constData(),
                processOf(sender));
        return noErr;
    }
    if (command != kMenuEvtSetOwner && isInADeadOwnersName(event)) {
        qCDebug(linkLog, "refused %s: process %u, which owned this agent, has ended", name.constData(),
                processOf(sender));
        __owpsn = {};
        return noErr;
    }
    qCDebug(linkLog, "%s of process %u", name.constData(), processOf(sender));
    switch (command) {
    case kMenuEvtDoHint:
        return __cmd_dohint(event);
    case kMenuEvtSetOwner:
        qCDebug(linkLog, "process %u owns this agent now; before it was process %u", processOf(sender),
                processOf(__owpsn));
        setOwner(sender);
        return noErr;
    case kMenuEvtSetOptions:
        return __cmd_setopt(event);
    case kMenuEvtQuit:
        ExitToShell();
        return noErr; // Nothing tells every compiler that the call above does not return.
    default:
        qCDebug(linkLog, "%s is no command", name.constData());
        return noErr;
    }
}
} // namespace

OSErr __ae_handler(const AppleEvent *event, AppleEvent *, SRefCon)
{
    OSErr error = errAEEventFailed;
    inSystemCallback([&] { error = handle(event); });
    return error;
}

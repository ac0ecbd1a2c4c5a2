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
    bool isOfAKnownSender; ///< The system could tell who made it.
};
std::optional<Claim> claim;

/// The process that the system says an event comes from, if it knows.
std::optional<SInt32> senderOf(const AppleEvent *event)
{
    SInt32 sender = 0;
    const OSErr error =
        AEGetAttributePtr(event, keySenderPIDAttr, typeSInt32, nullptr, &sender, sizeof sender, nullptr);
    return error == noErr ? std::optional(sender) : std::nullopt;
}

void setOwner(const AppleEvent *event, const ProcessSerialNumber &sender)
{
    __owpsn = sender;
    const std::optional<pid_t> pid = processId(sender); // It may have ended since it sent the claim.
    // Where a serial number tells no process ID, one that has ended is nobody's.
    claim = Claim{sender, pid.value_or(static_cast<pid_t>(sender.lowLongOfPSN)),
                  pid ? watchProcess(*pid) : [] { return true; }, senderOf(event).has_value()};
}

bool ownerHasEnded()
{
    // A system that does not let processes be watched still tells which there are.
    return claim && kivmAESameProcess(&claim->owner, &__owpsn) && (claim->hasEnded() || !processId(__owpsn));
}

/// Whether somebody else speaks in the owner's name now that the owner has ended. Its own last words are handled after
/// its end. A program that ends at once may have gone from the system before it is asked about, claim and all; an owner
/// that was known has been asked about in time, and whoever is not known by then is not that owner.
bool isInADeadOwnersName(const AppleEvent *event)
{
    if (!ownerHasEnded()) {
        return false;
    }
    const std::optional<SInt32> sender = senderOf(event);
    return sender ? *sender != claim->pid || processId(__owpsn) : claim->isOfAKnownSender;
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
        setOwner(event, sender);
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

void forgetOwnerWhoseNumberIsAnothers()
{
    if (ownerHasEnded() && processId(__owpsn)) {
        qCDebug(linkLog, "process %u, which owned this agent, has ended, and another has its number",
                processOf(__owpsn));
        __owpsn = {};
    }
}

OSErr __ae_handler(const AppleEvent *event, AppleEvent *, SRefCon)
{
    OSErr error = errAEEventFailed;
    inSystemCallback([&] { error = handle(event); });
    return error;
}

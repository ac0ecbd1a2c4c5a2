#include "shell/link/EventLink.h"

#include "shell/link/EventCodes.h"

#include <syslog.h>

namespace
{
void logFailure(const char *format, OSStatus error)
{
    syslog(LOG_ERR, format, static_cast<int>(error));
}

OSErr putStandardParameters(AppleEvent *event, std::uint32_t command, const ProcessSerialNumber *from)
{
    const OSErr error = AEPutParamPtr(event, kMenuParamCommand, typeSInt32, &command, sizeof command);
    return error != noErr ? error : AEPutParamPtr(event, kMenuParamSender, typeProcessSerialNumber, from, sizeof *from);
}
} // namespace

bool kivmAECreateEvent(const ProcessSerialNumber *from, const ProcessSerialNumber *to, std::uint32_t command,
                       AppleEvent *event)
{
    constexpr char failure[] = "kivmAECreateEvent failed, error=%d";
    if (!from || !to || !event || command == 0) {
        return false;
    }
    // Stays 0 for "no process": sending to that fails, and is logged there.
    const pid_t pid = processId(*to).value_or(0);

    AEAddressDesc address{};
    if (const OSErr error = AECreateDesc(typeKernelProcessID, &pid, sizeof pid, &address); error != noErr) {
        logFailure(failure, error);
        return false;
    }
    OSErr error =
        AECreateAppleEvent(kMenuEventClass, kMenuEventID, &address, kAutoGenerateReturnID, kAnyTransactionID, event);
    if (error == noErr) {
        error = putStandardParameters(event, command, from);
        if (error != noErr) {
            AEDisposeDesc(event);
        }
    }
    AEDisposeDesc(&address);
    if (error != noErr) {
        logFailure(failure, error);
    }
    return error == noErr;
}

bool kivmAESendEvent(const AppleEvent *event, AppleEvent *reply, bool wantReply)
{
    const OSErr error =
        AESend(event, reply, wantReply ? kAEWaitReply : kAENoReply, kAENormalPriority, kNoTimeOut, nullptr, nullptr);
    if (error != noErr) {
        logFailure("kivmAESendEvent failed, error=%d", error);
    }
    return error == noErr;
}

void kivmAEDisposeEvent(AppleEvent *event)
{
    if (event) {
        AEDisposeDesc(event);
    }
}

std::optional<pid_t> processId(const ProcessSerialNumber &process)
{
    pid_t pid = 0;
    return GetProcessPID(&process, &pid) == noErr ? std::optional(pid) : std::nullopt;
}

bool kivmAESameProcess(const ProcessSerialNumber *a, const ProcessSerialNumber *b)
{
    Boolean same = false;
    return a && b && SameProcess(a, b, &same) == noErr && same;
}

bool kivmAEIsForged(const AppleEvent *event, const ProcessSerialNumber *claimedSender)
{
    SInt32 sender = 0;
    const std::optional<pid_t> claimed = processId(*claimedSender);
    return claimed &&
           AEGetAttributePtr(event, keySenderPIDAttr, typeSInt32, nullptr, &sender, sizeof sender, nullptr) == noErr &&
           *claimed != sender;
}

#include "shell/link/EventHandler.h"

#include "shell/ProcessState.h"
#include "shell/link/EventCodes.h"
#include "shell/link/EventLink.h"
#include "shell/link/ServiceCommands.h"

OSErr __ae_handler(const AppleEvent *event, AppleEvent *, SRefCon)
{
    if (!event) {
        return errAEEventFailed;
    }
    std::uint32_t command = 0;
    OSErr error = AEGetParamPtr(event, kMenuParamCommand, typeSInt32, nullptr, &command, sizeof command, nullptr);
    if (error != noErr) {
        return error;
    }
    ProcessSerialNumber sender{};
    error = AEGetParamPtr(event, kMenuParamSender, typeProcessSerialNumber, nullptr, &sender, sizeof sender, nullptr);
    if (error != noErr) {
        return error;
    }
    // The cheap test first: whoever is not the owner may send as many as he likes.
    if (command != kMenuEvtSetOwner && !kivmAESameProcess(&sender, &__owpsn)) {
        return noErr;
    }
    if (kivmAEIsForged(event, &sender)) {
        return noErr;
    }
    switch (command) {
    case kMenuEvtDoHint:
        return __cmd_dohint(event);
    case kMenuEvtSetOwner:
        __owpsn = sender;
        return noErr;
    case kMenuEvtSetOptions:
        return __cmd_setopt(event);
    case kMenuEvtQuit:
        ExitToShell();
    default:
        return noErr;
    }
}

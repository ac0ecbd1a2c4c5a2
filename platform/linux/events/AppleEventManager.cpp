#include "platform/FourCharCode.h"
#include "platform/LogCategories.h"
#include "platform/linux/events/AppleEventContents.h"
#include "platform/linux/events/AppleEventTransport.h"
#include "platform/linux/include/SessionBus.h"

#include <Carbon/AppleEvents.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <utility>

namespace
{

struct Handler {
    AEEventHandlerUPP procedure;
    SRefCon refcon;
};

/// The handlers of this process, by class and ID, and the way by which events come to them.
struct Manager {
    Manager()
        : transport(SessionBus::instance(), [this](AppleEventContents event) { return dispatch(std::move(event)); })
    {
    }

    [[nodiscard]] OSErr dispatch(AppleEventContents event) const
    {
        const auto it = handlers.find({event.eventClass(), event.eventID()});
        if (it == handlers.end()) {
            qCDebug(linkLog, "refused an event %s %s: it has no handler", fourCharText(event.eventClass()).constData(),
                    fourCharText(event.eventID()).constData());
            return errAEEventNotHandled;
        }
        // A copy, for the handler may remove itself.
        const Handler handler = it->second;
        OpaqueAEDataStorage storage{std::move(event)};
        const AppleEvent received{typeAppleEvent, &storage};
        AppleEvent reply{typeNull, nullptr};
        const OSErr status = handler.procedure(&received, &reply, handler.refcon);
        AEDisposeDesc(&reply);
        return status;
    }

    std::map<std::pair<AEEventClass, AEEventID>, Handler> handlers;
    AppleEventTransport transport;
};

Manager &manager();

void flushEvents()
{
    manager().transport.flush();
}

Manager *makeManager()
{
    auto *const made = new Manager;
    // Both after the bus's first use, and so before QtDBus takes itself apart.
    std::atexit(flushEvents);
    std::at_quick_exit(flushEvents);
    return made;
}

Manager &manager()
{
    // Never destroyed: QtDBus may be gone before it, and whatever has told QtDBus of itself then waits for ever.
    static Manager &instance = *makeManager();
    return instance;
}

/// Null when the descriptor is no event.
AppleEventContents *contentsOf(const AEDesc *desc)
{
    return desc && desc->dataHandle ? std::get_if<AppleEventContents>(&desc->dataHandle->content) : nullptr;
}

OSErr setDesc(AEDesc *result, DescType type, std::variant<QByteArray, AppleEventContents> content)
{
    auto storage = std::make_unique<OpaqueAEDataStorage>(OpaqueAEDataStorage{std::move(content)});
    *result = {type, storage.release()};
    return noErr;
}

[[nodiscard]] bool isReadable(const void *data, Size size)
{
    return size >= 0 && (data || size == 0);
}

OSErr copyOut(const AppleEventContents::Parameter *found, DescType desiredType, DescType *actualType, void *data,
              Size maximumSize, Size *actualSize)
{
    if (!found) {
        return errAEDescNotFound;
    }
    if (found->type != desiredType) {
        return errAECoercionFail;
    }
    if (actualType) {
        *actualType = found->type;
    }
    if (actualSize) {
        *actualSize = found->bytes.size();
    }
    if (const Size size = std::min<Size>(maximumSize, found->bytes.size()); size > 0) {
        std::memcpy(data, found->bytes.constData(), static_cast<std::size_t>(size));
    }
    return noErr;
}

/// How long a sender waits at most. A tick is a sixtieth of a second. "For ever" is a minute here, as is the default:
/// it is the main thread that waits.
std::chrono::milliseconds timeoutOf(SInt32 timeOutInTicks)
{
    constexpr std::chrono::milliseconds maxTimeout = std::chrono::minutes(1);
    return timeOutInTicks < 0 ? maxTimeout
                              : std::min(maxTimeout, std::chrono::milliseconds(timeOutInTicks * 1000LL / 60));
}

} // namespace

OSErr AECreateDesc(DescType type, const void *data, Size size, AEDesc *result)
{
    if (!result) {
        return paramErr;
    }
    *result = {typeNull, nullptr};
    if (!isReadable(data, size)) {
        return paramErr;
    }
    if (size > AppleEventContents::maxBytes) {
        return memFullErr;
    }
    return setDesc(result, type, QByteArray(static_cast<const char *>(data), size));
}

OSErr AEDisposeDesc(AEDesc *desc)
{
    if (!desc) {
        return paramErr;
    }
    const std::unique_ptr<OpaqueAEDataStorage> storage(desc->dataHandle);
    *desc = {typeNull, nullptr};
    return noErr;
}

OSErr AECreateAppleEvent(AEEventClass eventClass, AEEventID eventID, const AEAddressDesc *target, AEReturnID,
                         AETransactionID, AppleEvent *result)
{
    if (!result) {
        return paramErr;
    }
    *result = {typeNull, nullptr};
    if (!target) {
        return paramErr;
    }
    AppleEventContents event(eventClass, eventID);
    const QByteArray *address = target->dataHandle ? std::get_if<QByteArray>(&target->dataHandle->content) : nullptr;
    if (target->descriptorType == typeKernelProcessID && address && address->size() == sizeof(SInt32)) {
        SInt32 pid = 0;
        std::memcpy(&pid, address->constData(), sizeof pid);
        event.target = pid;
    }
    return setDesc(result, typeAppleEvent, std::move(event));
}

OSErr AEPutParamPtr(AppleEvent *event, AEKeyword keyword, DescType type, const void *data, Size size)
{
    AppleEventContents *contents = contentsOf(event);
    return contents && isReadable(data, size) ? contents->setParameter(keyword, type, data, size) : OSErr(paramErr);
}

OSErr AEGetParamPtr(const AppleEvent *event, AEKeyword keyword, DescType desiredType, DescType *actualType, void *data,
                    Size maximumSize, Size *actualSize)
{
    const AppleEventContents *contents = contentsOf(event);
    if (!contents || !isReadable(data, maximumSize)) {
        return paramErr;
    }
    return copyOut(contents->parameter(keyword), desiredType, actualType, data, maximumSize, actualSize);
}

OSErr AEGetAttributePtr(const AppleEvent *event, AEKeyword keyword, DescType desiredType, DescType *actualType,
                        void *data, Size maximumSize, Size *actualSize)
{
    const AppleEventContents *contents = contentsOf(event);
    if (!contents || !isReadable(data, maximumSize)) {
        return paramErr;
    }
    if (keyword != keySenderPIDAttr || !contents->sender) {
        return errAEDescNotFound;
    }
    const SInt32 pid = *contents->sender;
    const AppleEventContents::Parameter sender{typeSInt32,
                                               QByteArray(reinterpret_cast<const char *>(&pid), sizeof pid)};
    return copyOut(&sender, desiredType, actualType, data, maximumSize, actualSize);
}

OSErr AESend(const AppleEvent *event, AppleEvent *reply, AESendMode mode, AESendPriority, SInt32 timeOutInTicks,
             AEIdleUPP, AEFilterUPP)
{
    if (reply) {
        *reply = {typeNull, nullptr};
    }
    const AppleEventContents *contents = contentsOf(event);
    if (!contents) {
        return paramErr;
    }
    constexpr AESendMode replyBits = 3;
    AppleEventTransport &transport = manager().transport;
    return (mode & replyBits) == kAEWaitReply ? transport.sendAndWait(*contents, timeoutOf(timeOutInTicks))
                                              : transport.send(*contents);
}

OSErr AEInstallEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler, SRefCon refcon,
                            Boolean)
{
    if (!handler) {
        return paramErr;
    }
    Manager &all = manager();
    all.handlers.insert_or_assign({eventClass, eventID}, Handler{handler, refcon});
    all.transport.startReceiving();
    return noErr;
}

OSErr AERemoveEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP handler, Boolean)
{
    if (!handler) {
        return paramErr;
    }
    Manager &all = manager();
    const auto it = all.handlers.find({eventClass, eventID});
    if (it == all.handlers.end() || it->second.procedure != handler) {
        return errAEHandlerNotFound;
    }
    all.handlers.erase(it);
    if (all.handlers.empty()) {
        all.transport.stopReceiving();
    }
    return noErr;
}

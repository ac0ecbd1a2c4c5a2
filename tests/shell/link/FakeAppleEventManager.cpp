#include "tests/shell/link/FakeAppleEventManager.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace FakeAppleEventManager
{
std::vector<std::string> calls;
std::map<std::string, OSErr> failures;
int descriptors = 0;
AEEventHandlerUPP handler = nullptr;
AEEventHandlerUPP lastInstalled = nullptr;
std::function<OSErr(const char *)> onHandler;
std::optional<pid_t> sender;

void reset()
{
    calls.clear();
    failures.clear();
    descriptors = 0;
    sender.reset();
    handler = lastInstalled = nullptr;
}
} // namespace FakeAppleEventManager

namespace
{

using namespace FakeAppleEventManager;

using Parameter = std::pair<DescType, std::string>;

struct Storage {
    std::string bytes;
    std::map<AEKeyword, Parameter> parameters;
};

Storage *storageOf(const AEDesc *desc)
{
    return reinterpret_cast<Storage *>(desc->dataHandle);
}

std::string text(FourCharCode code)
{
    const char characters[] = {static_cast<char>(code >> 24), static_cast<char>(code >> 16),
                               static_cast<char>(code >> 8), static_cast<char>(code)};
    return {characters, sizeof characters};
}

std::string hexadecimal(const void *data, Size size)
{
    static constexpr char digits[] = "0123456789abcdef";
    std::string result;
    for (Size i = size - 1; i >= 0; --i) { // As a number, on a machine that stores the lowest byte first.
        const auto byte = static_cast<const unsigned char *>(data)[i];
        result += {digits[byte >> 4], digits[byte & 15]};
    }
    return result;
}

OSErr answerOf(const std::string &name)
{
    const auto failure = failures.find(name);
    return failure == failures.end() ? OSErr(noErr) : failure->second;
}

void make(AEDesc *result, DescType type, std::string bytes)
{
    ++descriptors;
    *result = {type, reinterpret_cast<AEDataStorage>(new Storage{std::move(bytes), {}})};
}

} // namespace

OSErr AECreateDesc(DescType type, const void *data, Size size, AEDesc *result)
{
    calls.push_back("AECreateDesc " + text(type) + ' ' + hexadecimal(data, size));
    if (const OSErr error = answerOf("AECreateDesc"); error != noErr) {
        return error;
    }
    make(result, type, std::string(static_cast<const char *>(data), static_cast<std::size_t>(size)));
    return noErr;
}

OSErr AEDisposeDesc(AEDesc *desc)
{
    if (desc->dataHandle) {
        --descriptors;
        delete storageOf(desc);
    }
    *desc = {typeNull, nullptr};
    return noErr;
}

OSErr AECreateAppleEvent(AEEventClass eventClass, AEEventID eventID, const AEAddressDesc *target, AEReturnID returnID,
                         AETransactionID transactionID, AppleEvent *result)
{
    calls.push_back("AECreateAppleEvent " + text(eventClass) + ' ' + text(eventID) + ' ' +
                    text(target->descriptorType) + ' ' + std::to_string(returnID) + ' ' +
                    std::to_string(transactionID));
    if (const OSErr error = answerOf("AECreateAppleEvent"); error != noErr) {
        return error;
    }
    make(result, typeAppleEvent, {});
    return noErr;
}

OSErr AEPutParamPtr(AppleEvent *event, AEKeyword keyword, DescType type, const void *data, Size size)
{
    calls.push_back("AEPutParamPtr " + text(keyword) + ' ' + text(type) + ' ' + hexadecimal(data, size));
    if (const OSErr error = answerOf(text(keyword)); error != noErr) {
        return error;
    }
    storageOf(event)->parameters[keyword] = {
        type, std::string(static_cast<const char *>(data), static_cast<std::size_t>(size))};
    return noErr;
}

OSErr AEGetParamPtr(const AppleEvent *event, AEKeyword keyword, DescType desiredType, DescType *, void *data,
                    Size maximumSize, Size *actualSize)
{
    const auto &parameters = storageOf(event)->parameters;
    const auto found = parameters.find(keyword);
    if (found == parameters.end() || found->second.first != desiredType) {
        return found == parameters.end() ? errAEDescNotFound : errAECoercionFail;
    }
    const std::string &bytes = found->second.second;
    std::memcpy(data, bytes.data(), std::min(bytes.size(), static_cast<std::size_t>(maximumSize)));
    if (actualSize) {
        *actualSize = static_cast<Size>(bytes.size());
    }
    return noErr;
}

OSErr AEGetAttributePtr(const AppleEvent *, AEKeyword keyword, DescType, DescType *, void *data, Size, Size *)
{
    if (keyword != keySenderPIDAttr || !sender) {
        return errAEDescNotFound;
    }
    const SInt32 pid = *sender;
    std::memcpy(data, &pid, sizeof pid);
    return noErr;
}

OSErr AESend(const AppleEvent *, AppleEvent *reply, AESendMode mode, AESendPriority priority, SInt32 timeOutInTicks,
             AEIdleUPP idle, AEFilterUPP filter)
{
    calls.push_back("AESend " + std::to_string(mode) + ' ' + std::to_string(priority) + ' ' +
                    std::to_string(timeOutInTicks) + (reply ? " reply" : "") + (idle ? " idle" : "") +
                    (filter ? " filter" : ""));
    return answerOf("AESend");
}

OSErr AEInstallEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP procedure, SRefCon refcon,
                            Boolean isSystemHandler)
{
    calls.push_back("AEInstallEventHandler " + text(eventClass) + ' ' + text(eventID) + (refcon ? " refcon" : "") +
                    (isSystemHandler ? " system" : ""));
    handler = lastInstalled = procedure;
    return onHandler ? onHandler("install the handler") : OSErr(noErr);
}

OSErr AERemoveEventHandler(AEEventClass eventClass, AEEventID eventID, AEEventHandlerUPP procedure,
                           Boolean isSystemHandler)
{
    calls.push_back("AERemoveEventHandler " + text(eventClass) + ' ' + text(eventID) +
                    (isSystemHandler ? " system" : ""));
    if (handler != procedure) {
        return errAEHandlerNotFound;
    }
    handler = nullptr;
    return onHandler ? onHandler("remove the handler") : OSErr(noErr);
}

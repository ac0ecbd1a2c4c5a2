#include "ServiceCommands.h"

#include "shell/EventCodes.h"
#include "shell/ProcessState.h"

#include <algorithm>
#include <new>
#include <optional>
#include <vector>

namespace
{
std::optional<std::uint32_t> readUInt32(const AppleEvent *event, AEKeyword keyword)
{
    std::uint32_t value = 0;
    if (AEGetParamPtr(event, keyword, typeUInt32, nullptr, &value, sizeof value, nullptr) != noErr) {
        return std::nullopt;
    }
    return value;
}

/// The first `count` codes of the event's list; nothing when there is no list. A list shorter than announced is filled
/// up with zeros, of which one stands for all: the codes are only ever searched, and the sender's word alone must not
/// make this process allocate gigabytes.
std::optional<std::vector<std::uint32_t>> readActions(const AppleEvent *event, std::uint32_t count)
{
    Size bytes = 0;
    if (AEGetParamPtr(event, kMenuParamActions, typeMenuActionList, nullptr, nullptr, 0, &bytes) != noErr) {
        return std::nullopt;
    }
    const std::size_t sent = (static_cast<std::size_t>(bytes) + sizeof(std::uint32_t) - 1) / sizeof(std::uint32_t);
    std::vector<std::uint32_t> codes(std::min<std::size_t>(count, sent + 1), 0);
    if (AEGetParamPtr(event, kMenuParamActions, typeMenuActionList, nullptr, codes.data(),
                      static_cast<Size>(codes.size() * sizeof codes[0]), nullptr) != noErr) {
        return std::nullopt;
    }
    return codes;
}
} // namespace

OSErr __cmd_setopt(const AppleEvent *event)
try {
    if (!event) {
        return errAEEventFailed;
    }
    // Flags first: they stay in force when the list that came with them turns out unreadable.
    if (const auto flags = readUInt32(event, kMenuParamFlags)) {
        __menu->setFlags(*flags);
    }
    const auto count = readUInt32(event, kMenuParamActionCount);
    if (!count) {
        return noErr;
    }
    if (*count == 0) {
        __menu->setActions({});
        return noErr;
    }
    const auto codes = readActions(event, *count);
    if (!codes) {
        return errAEEventFailed;
    }
    __menu->setActions(*codes);
    return noErr;
} catch (const std::bad_alloc &) {
    return errAEEventFailed;
}

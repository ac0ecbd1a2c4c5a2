#include "shell/link/ServiceCommands.h"

#include "notify/queue/KivNotificationManager.h"
#include "notify/record/KivNotification.h"
#include "notify/record/MessageText.h"
#include "platform/LogCategories.h"
#include "platform/data/StringValues.h"
#include "shell/ProcessState.h"
#include "shell/link/EventCodes.h"

#include <QByteArray>
#include <QList>

#include <algorithm>
#include <memory>
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

/// The first `length` bytes of the event's text, as far as there are that many, up to the first zero byte; nothing when
/// there is no text. Here too the sender's word alone allocates nothing.
std::optional<QByteArray> readHintText(const AppleEvent *event, std::uint32_t length)
{
    Size bytes = 0;
    if (AEGetParamPtr(event, kMenuParamHintText, typeMenuHintText, nullptr, nullptr, 0, &bytes) != noErr) {
        return std::nullopt;
    }
    QByteArray text(std::min<qsizetype>(length, bytes), '\0');
    if (AEGetParamPtr(event, kMenuParamHintText, typeMenuHintText, nullptr, text.data(), static_cast<Size>(text.size()),
                      nullptr) != noErr) {
        return std::nullopt;
    }
    text.truncate(qstrnlen(text.constData(), static_cast<size_t>(text.size())));
    return text;
}
} // namespace

OSErr __cmd_setopt(const AppleEvent *event)
try {
    if (!event) {
        return errAEEventFailed;
    }
    // Flags first: they stay in force when the list that came with them turns out unreadable.
    const auto flags = readUInt32(event, kMenuParamFlags);
    if (flags) {
        qCDebug(linkLog, "flags %u", *flags);
        __menu->setFlags(*flags);
    }
    const auto count = readUInt32(event, kMenuParamActionCount);
    if (!count) {
        qCDebug(linkLog, flags ? "the commands stay as they are: no count of them" : "neither flags nor commands");
        return noErr;
    }
    if (*count == 0) {
        qCDebug(linkLog, "no command is allowed");
        __menu->setActions({});
        return noErr;
    }
    const auto codes = readActions(event, *count);
    if (!codes) {
        qCDebug(linkLog, "%u commands are announced, and there is no list of them", *count);
        return errAEEventFailed;
    }
    qCDebug(linkLog) << "commands allowed:" << QList<std::uint32_t>(codes->begin(), codes->end());
    __menu->setActions(*codes);
    return noErr;
} catch (const std::bad_alloc &) {
    qCDebug(linkLog, "no memory for a list of commands");
    return errAEEventFailed;
}

OSErr __cmd_dohint(const AppleEvent *event)
try {
    if (!event) {
        return errAEEventFailed;
    }
    const std::uint32_t length = readUInt32(event, kMenuParamHintSize).value_or(0);
    if (length == 0) {
        qCDebug(linkLog, "a hint without a length is not shown");
        return noErr;
    }
    const auto text = readHintText(event, length);
    if (!text) {
        qCDebug(linkLog, "a hint is announced, and there is no text");
        return errAEEventFailed;
    }
    qCDebug(linkLog) << "hint of" << text->size() << "bytes";
    const auto record = std::make_shared<KivNotification>();
    // No more than can be read, even of HTML: a hundred hints may wait.
    // The height last: setting the text has set the height that it needs.
    record->setMessageText(shortenedText(StringValues::fromUtf8(*text), maxTextBytes));
    record->setContentWidth(370);
    record->setContentHeight(55);
    const bool isShown = KivNotificationManager::sharedInstance().showNotificationInstantly(record);
    return isShown ? OSErr{noErr} : OSErr{errAEEventFailed};
} catch (const std::bad_alloc &) {
    qCDebug(linkLog, "no memory for a hint");
    return errAEEventFailed;
}

#include "tools/kivservice/AttachedService.h"

#include "menu/MenuEntries.h"
#include "platform/FourCharCode.h"
#include "shell/link/EventCodes.h"
#include "shell/link/EventLink.h"

#include <optional>

namespace
{
void putUInt32(AppleEvent &event, AEKeyword keyword, std::uint32_t value)
{
    AEPutParamPtr(&event, keyword, typeUInt32, &value, sizeof value);
}

/// The command that a menu action asks for; nothing for any other event.
std::optional<std::uint32_t> actionOf(const AppleEvent &event, std::uint32_t command)
{
    std::uint32_t code = 0;
    const bool isAction = command == kMenuEvtAction && AEGetParamPtr(&event, kMenuParamActions, typeMenuActionList,
                                                                     nullptr, &code, sizeof code, nullptr) == noErr;
    return isAction ? std::optional(code) : std::nullopt;
}

QByteArray describe(std::uint32_t command, std::optional<std::uint32_t> action)
{
    QByteArray line = fourCharText(command);
    if (action) {
        line += ' ' + QByteArray::number(*action) + ' ' + menuEntryTitle(*action).toUtf8();
    }
    return line.trimmed();
}
} // namespace

AttachedService::AttachedService(ProcessSerialNumber agent, EventPrinter print, ActionHandler carryOut)
    : m_agent(agent)
    , m_print(std::move(print))
    , m_carryOut(std::move(carryOut))
{
    GetCurrentProcess(&m_self);
    AEInstallEventHandler(kMenuEventClass, kMenuEventID, onEvent, this, false);
}

AttachedService::~AttachedService()
{
    AERemoveEventHandler(kMenuEventClass, kMenuEventID, onEvent, false);
}

bool AttachedService::claim()
{
    return sendEvent(kMenuEvtSetOwner);
}

bool AttachedService::send(const ServiceLine::Flags &line)
{
    return sendEvent(kMenuEvtSetOptions, [&line](AppleEvent &event) { putUInt32(event, kMenuParamFlags, line.flags); });
}

bool AttachedService::send(const ServiceLine::Actions &line)
{
    const std::vector<std::uint32_t> &codes = line.codes;
    return sendEvent(kMenuEvtSetOptions, [&codes](AppleEvent &event) {
        putUInt32(event, kMenuParamActionCount, static_cast<std::uint32_t>(codes.size()));
        if (!codes.empty()) {
            AEPutParamPtr(&event, kMenuParamActions, typeMenuActionList, codes.data(),
                          static_cast<Size>(codes.size() * sizeof codes[0]));
        }
    });
}

bool AttachedService::send(const ServiceLine::Hint &line)
{
    const QByteArray &text = line.text;
    return sendEvent(kMenuEvtDoHint, [&text](AppleEvent &event) {
        putUInt32(event, kMenuParamHintSize, static_cast<std::uint32_t>(text.size()));
        AEPutParamPtr(&event, kMenuParamHintText, typeMenuHintText, text.constData(), text.size());
    });
}

bool AttachedService::send(const ServiceLine::Quit &)
{
    return sendEvent(kMenuEvtQuit);
}

bool AttachedService::sendEvent(std::uint32_t command, const std::function<void(AppleEvent &)> &fill)
{
    AppleEvent event{};
    if (!kivmAECreateEvent(&m_self, &m_agent, command, &event)) {
        return false;
    }
    if (fill) {
        fill(event);
    }
    const bool sent = kivmAESendEvent(&event, nullptr, false);
    kivmAEDisposeEvent(&event);
    return sent;
}

OSErr AttachedService::onEvent(const AppleEvent *event, AppleEvent *, SRefCon refcon)
{
    return static_cast<AttachedService *>(refcon)->onEvent(*event);
}

OSErr AttachedService::onEvent(const AppleEvent &event)
{
    std::uint32_t command = 0;
    ProcessSerialNumber sender{};
    if (AEGetParamPtr(&event, kMenuParamCommand, typeSInt32, nullptr, &command, sizeof command, nullptr) == noErr &&
        AEGetParamPtr(&event, kMenuParamSender, typeProcessSerialNumber, nullptr, &sender, sizeof sender, nullptr) ==
            noErr &&
        !kivmAEIsForged(&event, &sender) && kivmAESameProcess(&sender, &m_agent)) {
        const std::optional<std::uint32_t> action = actionOf(event, command);
        m_print(describe(command, action));
        if (action) {
            m_carryOut(*action);
        }
    }
    return noErr;
}

#pragma once

#include "menu/MenuCommands.h"
#include "shell/link/EventCodes.h"

#include <Carbon/Carbon.h>

#include <string_view>
#include <vector>

/// An event of the link, put together parameter by parameter, so that any may be missing or wrong.
class EventBuilder final
{
public:
    EventBuilder()
    {
        const pid_t self = ::getpid();
        AEAddressDesc address{};
        AECreateDesc(typeKernelProcessID, &self, sizeof self, &address);
        AECreateAppleEvent(kMenuEventClass, kMenuEventID, &address, kAutoGenerateReturnID, kAnyTransactionID, &m_event);
        AEDisposeDesc(&address);
    }
    ~EventBuilder() { AEDisposeDesc(&m_event); }
    EventBuilder(const EventBuilder &) = delete;
    EventBuilder &operator=(const EventBuilder &) = delete;

    EventBuilder &command(std::uint32_t code) { return put(kMenuParamCommand, typeSInt32, &code, sizeof code); }
    EventBuilder &sender(ProcessSerialNumber psn)
    {
        return put(kMenuParamSender, typeProcessSerialNumber, &psn, sizeof psn);
    }
    EventBuilder &flags(std::uint32_t value) { return put(kMenuParamFlags, typeUInt32, &value, sizeof value); }
    EventBuilder &count(std::uint32_t value) { return put(kMenuParamActionCount, typeUInt32, &value, sizeof value); }
    EventBuilder &actions(const std::vector<std::uint32_t> &codes)
    {
        return put(kMenuParamActions, typeMenuActionList, codes.data(), codes.size() * sizeof(std::uint32_t));
    }
    EventBuilder &put(std::uint32_t keyword, std::uint32_t type, const void *data, std::size_t size)
    {
        AEPutParamPtr(&m_event, keyword, type, data, static_cast<Size>(size));
        return *this;
    }

    [[nodiscard]] const AppleEvent *event() const { return &m_event; }

private:
    AppleEvent m_event{};
};

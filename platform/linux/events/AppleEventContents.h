#pragma once

#include <Carbon/AppleEvents.h>
#include <QByteArray>

#include <map>
#include <optional>
#include <variant>

/// What an event holds: class, ID, parameters by keyword, and where it goes or comes from.
class AppleEventContents final
{
public:
    struct Parameter {
        DescType type;
        QByteArray bytes;
    };

    /// The content of one event in bytes, for each parameter `parameterCost` more than its own. A bus disconnects who
    /// sends a message of more than 128 MiB.
    static constexpr Size maxBytes = Size{32} * 1024 * 1024;
    static constexpr Size parameterCost = 64;

    AppleEventContents(AEEventClass eventClass, AEEventID eventID)
        : m_eventClass(eventClass)
        , m_eventID(eventID)
    {
    }

    [[nodiscard]] AEEventClass eventClass() const { return m_eventClass; }
    [[nodiscard]] AEEventID eventID() const { return m_eventID; }

    /// Sets or replaces. memFullErr, and nothing changed, beyond maxBytes; `data` is not read then.
    [[nodiscard]] OSErr setParameter(AEKeyword keyword, DescType type, const void *data, Size size);
    /// Null when there is none; valid until the next change.
    [[nodiscard]] const Parameter *parameter(AEKeyword keyword) const;
    [[nodiscard]] const std::map<AEKeyword, Parameter> &parameters() const { return m_parameters; }

    /// The process that the event is for; none when its address names no process ID.
    std::optional<SInt32> target;
    /// The process that the event came from; none in events made here, and when the bus did not say, or did not know
    /// any more.
    std::optional<SInt32> sender;

private:
    AEEventClass m_eventClass;
    AEEventID m_eventID;
    std::map<AEKeyword, Parameter> m_parameters;
    Size m_size = 0;
};

/// What stands behind a descriptor: bytes, or an event when its type is typeAppleEvent.
struct OpaqueAEDataStorage {
    std::variant<QByteArray, AppleEventContents> content;
};

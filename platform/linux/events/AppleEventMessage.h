#pragma once

#include "platform/linux/events/AppleEventContents.h"

#include <QDBusMessage>

#include <optional>

/// An event as the bus message that carries it, and back: a call of Send at eventObjectPath(), as the contract
/// resources/dbus/com.tamborel.kivune.AppleEvents.xml says it.

/// The call to the event's target. None when there is no target, or a code holds a zero byte, which no string of D-Bus
/// can hold. `busName` is the destination; when it is empty, the bus name under which the target receives events.
[[nodiscard]] std::optional<QDBusMessage> messageOf(const AppleEventContents &event, const QString &busName = {});

/// The event of a call of Send; sender and target are not set. None when the message breaks the contract.
[[nodiscard]] std::optional<AppleEventContents> eventOf(const QDBusMessage &message);

#pragma once

#include "platform/LogCategories.h"

#include <exception>

/// Does what the system has called back for, and lets nothing that is thrown reach the system, whose own functions
/// cannot be unwound: that would end the process. What is thrown becomes a warning in the log, as it does in Qt's
/// callbacks.
template <typename Work>
void inSystemCallback(Work &&work) noexcept
{
    try {
        work();
    } catch (const std::exception &exception) {
        qCWarning(agentLog) << "exception in a callback of the system:" << QString::fromUtf8(exception.what());
    } catch (...) {
        qCWarning(agentLog, "something was thrown in a callback of the system");
    }
}

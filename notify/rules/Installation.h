#pragma once

#include "notify/record/MessageCodes.h"

#include <QString>

#include <cstdint>

/// The facts about this installation and user that messages are addressed by. The codes are those of MessageCodes.h.
/// A fact that the bundle or the system does not state is nil, and 0 as a number.
struct Installation {
    std::int32_t messageLevel = kLevelUser;
    std::int32_t productCode = kProductKivuneTS;
    std::int32_t licenseType = kLicensePaid;
    QString messageLevelString;
    QString productCodeString;
    QString licenseTypeString;
    QString systemCodeString;
    std::uint32_t productVersion = 0; ///< The version's digits as one number: 3.2.1 is 321.
    std::uint32_t systemVersion = 0;  ///< In the same way.
    QString buildDate;
    QString productVersionString;
    QString systemVersionString;
};

#pragma once

#include <cstdint>

/// What the numbers in a record's fields mean. The feed says them as words (feed/FeedParser.cpp turns these into
/// codes), and the cache file keeps the numbers: they never change. A record may hold any other number as well, as its
/// cache file may; that one stands for none of these.

enum MessageType : std::int32_t {
    kTypeUpdate = 0,
    kTypeNotice = 1,
    kTypeNews = 2,
    kTypeWarning = 3,
};

enum MessagePriority : std::int32_t {
    kPriorityLow = 0,
    kPriorityMedium = 1,
    kPriorityHigh = 2,
    kPriorityInstant = 3, ///< Of what is shown at once and always. No feed has a word for it.
};

/// Whom a message is for, or what this user is.
enum MessageLevel : std::int32_t {
    kLevelUser = 0,
    kLevelAdmin = 1,
    kLevelAny = 2,
};

/// Which product a message is about, or which this is.
enum ProductCode : std::int32_t {
    kProductKivune = 0,
    kProductKivuneTS = 1,
    kProductAny = 2,
};

/// Which edition a message is for, or which this is.
enum LicenseType : std::int32_t {
    kLicenseTrial = 0,
    kLicensePaid = 1,
    kLicenseAny = 2,
};

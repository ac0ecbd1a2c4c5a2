#pragma once

#include <optional>
#include <string>
#include <vector>

/// A process as the faked Process Manager tells of it. Linking this takes the place of the real list of processes.
struct FakeProcess {
    unsigned pid = 0;
    std::string type;                      ///< Four characters.
    std::string signature;                 ///< Four characters.
    std::optional<std::string> identifier; ///< CFBundleIdentifier.
    bool hasDictionary = true;
    bool answers = true; ///< False: GetProcessInformation fails.
};

/// The processes that run, in the order in which they are told.
extern std::vector<FakeProcess> fakeProcesses;
/// How often the list was begun.
extern int fakePasses;
/// Dictionaries that were given out.
extern int fakeDictionaries;

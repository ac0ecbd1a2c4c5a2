#pragma once

#include <CoreFoundation/CoreFoundation.h>
#include <string>
#include <vector>

/// Core Foundation, as far as the agent calls it on macOS: its objects are counted as there, so that a test sees what
/// has not been released.
namespace FakeCoreFoundation
{

/// How many objects there are that somebody has to release.
int liveObjects();

/// An array that retains nothing, as those of the tests' display modes. The caller's to release.
CFArrayRef newArray(const std::vector<const void *> &values);

std::string text(CFTypeRef string);
int number(CFTypeRef number);

/// The distributed notification centre.
struct Centre {
    struct Entry {
        const void *observer;
        CFNotificationCallback callback;
        std::string name;
        bool atOnce; ///< Also while the program is not the active one.
    };
    std::vector<Entry> entries;

    /// Calls those who have asked for that name.
    void post(const std::string &name) const;
};
Centre &centre();

/// What the main bundle answers with. Empty paths: it has no such folder.
struct MainBundle {
    bool exists = true;
    std::string resources;
    std::string contents;
};
MainBundle &mainBundle();

} // namespace FakeCoreFoundation

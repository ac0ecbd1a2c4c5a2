#include "shell/DockSearch.h"

#include "platform/FourCharCode.h"
#include "platform/GraphicalSession.h"
#include "platform/LogCategories.h"

#include <Carbon/Carbon.h>

#include <string_view>

namespace
{
constexpr int maxAttempts = 30;
constexpr useconds_t pauseAfterAttempt = 1'000'000;

constexpr std::uint32_t applicationType = fourCharCode("APPL");
constexpr OSType dockSignature = fourCharCode("dock");
constexpr std::string_view dockIdentifier = "com.apple.dock";

bool hasIdentifier(CFDictionaryRef dictionary, std::string_view identifier)
{
    const void *value = CFDictionaryGetValue(dictionary, CFSTR("CFBundleIdentifier"));
    if (!value || CFGetTypeID(value) != CFStringGetTypeID()) {
        return false;
    }
    char text[64]; // Longer than the one that is looked for: a text that does not fit is another one.
    return CFStringGetCString(static_cast<CFStringRef>(value), text, sizeof text, kCFStringEncodingUTF8) &&
           text == identifier;
}

bool isDock(const ProcessSerialNumber &process, const ProcessInfoRec &info)
{
    if (info.processType != applicationType || info.processSignature != dockSignature) {
        return false;
    }
    const CFDictionaryRef dictionary =
        ProcessInformationCopyDictionary(&process, kProcessDictionaryIncludeAllInformationMask);
    if (!dictionary) {
        return false;
    }
    const bool found = hasIdentifier(dictionary, dockIdentifier);
    CFRelease(dictionary);
    return found;
}
} // namespace

void __wait_dock(SleepFunction sleep)
{
    for (int attempt = 1; attempt <= maxAttempts; ++attempt) {
        if (__find_dock()) {
            qCDebug(itemLog, "attempt %d: the item has a place", attempt);
            return;
        }
        qCDebug(itemLog, "attempt %d of %d: no panel runs", attempt, maxAttempts);
        sleep(pauseAfterAttempt);
        if (GraphicalSession::isEnding()) {
            qCDebug(itemLog, "the session ends before a panel runs");
            return;
        }
    }
    qCDebug(itemLog, "goes on without a panel");
}

bool __find_dock()
{
    ProcessSerialNumber process{0, kNoProcess};
    ProcessInfoRec info{};
    info.processInfoLength = sizeof info;
    // A process that cannot be looked at ends the whole pass, as the end of the list does: the next pass is a second
    // away.
    while (GetNextProcess(&process) == noErr && GetProcessInformation(&process, &info) == noErr) {
        if (isDock(process, info)) {
            return true;
        }
    }
    return false;
}

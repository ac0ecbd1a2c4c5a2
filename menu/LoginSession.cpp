#include "menu/LoginSession.h"

#include <optional>

namespace
{
std::optional<bool> booleanUnder(CFDictionaryRef dictionary, CFStringRef key)
{
    const void *value = CFDictionaryGetValue(dictionary, key);
    if (!value || CFGetTypeID(value) != CFBooleanGetTypeID()) {
        return std::nullopt;
    }
    return CFBooleanGetValue(static_cast<CFBooleanRef>(value)) != 0;
}
} // namespace

bool is_hidden()
{
    const CFDictionaryRef session = CGSessionCopyCurrentDictionary();
    const bool hidden = isLoggedInOffConsole(session);
    if (session) {
        CFRelease(session);
    }
    return hidden;
}

bool isLoggedInOffConsole(CFDictionaryRef session)
{
    if (!session) {
        return false;
    }
    // The system spells one of the keys with a second S.
    const std::optional<bool> loginDone = booleanUnder(session, CFSTR("kCGSessionLoginDoneKey"));
    const std::optional<bool> onConsole = booleanUnder(session, CFSTR("kCGSSessionOnConsoleKey"));
    return loginDone == true && onConsole == false;
}

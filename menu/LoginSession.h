#pragma once

#include <Carbon/Carbon.h>

/// Whether this login session has finished logging in and is not the one on the machine's console: a remote desktop,
/// whose screen may change its size. False when nothing is known of the session.
[[nodiscard]] bool is_hidden();

/// The same of a session dictionary as CGSessionCopyCurrentDictionary gives it, or of null.
[[nodiscard]] bool isLoggedInOffConsole(CFDictionaryRef session);

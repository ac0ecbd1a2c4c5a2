#pragma once

#include "Carbon/CoreFoundation.h"

/// The few Core Graphics calls that the agent makes.

/// The login session of this process, from logind: "kCGSessionLoginDoneKey" and "kCGSSessionOnConsoleKey", both
/// CFBooleans. Where logind knows no session, an X server that is itself a VNC server stands for a finished login away
/// from the console; any other gives null. The caller's to release. Takes 500 ms at most.
CFDictionaryRef CGSessionCopyCurrentDictionary();

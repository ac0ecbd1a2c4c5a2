#pragma once

#include <Carbon/AppleEvents.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

/// The Apple Event Manager as it was called. Linking this takes the place of the real one: nothing is sent, each call
/// is written down, and any can be made to fail.
namespace FakeAppleEventManager
{

/// The calls since the start or reset(), each a line: its name and what it was given.
extern std::vector<std::string> calls;
/// What a call answers in place of noErr, by its name; that of a put by the keyword alone, such as "mpcm".
extern std::map<std::string, OSErr> failures;
/// Descriptors that were made and not disposed of.
extern int descriptors;
/// The installed handler, and the one that was installed last; null when there is none.
extern AEEventHandlerUPP handler;
extern AEEventHandlerUPP lastInstalled;
/// Called with what is going on when a handler has been installed or is about to be removed, if there is such a
/// function.
extern std::function<OSErr(const char *)> onHandler;
/// The process that the system says an event comes from, if it knows.
extern std::optional<pid_t> sender;

void reset();

} // namespace FakeAppleEventManager

#pragma once

#include "menu/KIVMenuObj.h"

#include <Carbon/Carbon.h>

#include <memory>

/// The shell's process-wide state. Main thread only.

/// The one menu object, from start-up to teardown.
extern std::unique_ptr<KIVMenuObj> __menu;

/// This process: the sender of every event that goes out.
extern ProcessSerialNumber __mypsn;

/// The service that owns this agent, target of every event that goes out and the only one whose commands are taken.
/// {0, 0}, no process, until one has claimed it.
extern ProcessSerialNumber __owpsn;

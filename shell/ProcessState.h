#pragma once

#include "menu/KIVMenuObj.h"

#include <Carbon/Carbon.h>

#include <memory>

/// The shell's process-wide state. Main thread only.

/// The one menu object, from start-up to teardown.
extern std::unique_ptr<KIVMenuObj> __menu;

/// This process: the sender of every event that goes out.
extern ProcessSerialNumber __mypsn;

/// The service that owns this agent: the target of every event sent from here, and the only sender whose commands are
/// carried out. {0, 0}, no process, until a service has claimed the agent.
extern ProcessSerialNumber __owpsn;

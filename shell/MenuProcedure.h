#pragma once

#include "menu/KIVMenuObj.h"

#include <cstdint>

/// Carries out the command of a chosen menu entry (MenuCode). Preferences, support and product information are the
/// agent's own; every other command goes to the service that owns this agent, a disconnect once the user has confirmed
/// it. `menu` is not used. Failures are logged by the link, and otherwise ignored.
void __menu_proc(KIVMenuObj *menu, std::uint32_t code);

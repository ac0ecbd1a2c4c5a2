#pragma once

#include <cstdint>

/// What a menu entry commands. The same numbers are the tags of the entries, travel in the service's list of allowed
/// commands, and are the menu procedure's argument. They are the service's: not contiguous, and never to be changed.
/// The type is not called MenuCommand because macOS has a global type of that name.
enum MenuCode : std::uint32_t {
    kMenuCmdServerPrefs = 32790,
    kMenuCmdOptions = 32791,
    kMenuCmdDisconnect = 32792,
    kMenuCmdMinimize = 32793,
    kMenuCmdReset = 32794,
    kMenuCmdMaximize = 32795,
    kMenuCmdRestore = 32796,
    kMenuCmdAbout = 32799,
    kMenuCmdSupport = 32800,
    kMenuCmdResolution = 32809, ///< Parent of the resolution submenu.
    kMenuCmdWorkspace = 32810,  ///< Parent of the workspace submenu.
    kMenuCmdNone = 0xFFFFFFFF,  ///< The placeholder of the resolution submenu; -1 as a tag.
};

/// The word of flags that the service sets. Other bits are kept and mean nothing to the menu.
enum MenuFlag : std::uint32_t {
    kMenuFlagVisible = 2, ///< The status item is there.
    kMenuFlagActive = 4,  ///< On image; resolution and workspace can be opened.
};

#pragma once

#include "platform/FourCharCode.h"

#include <cstdint>

/// The agent's and the service's common language: Apple events of one class and ID, in both directions. Each names its
/// command in kMenuParamCommand and its sender in kMenuParamSender. No reply is ever produced or read.

inline constexpr std::uint32_t kMenuEventClass = fourCharCode("kvmc");
inline constexpr std::uint32_t kMenuEventID = fourCharCode("kvme");

/// Parameters, each with its type.
inline constexpr std::uint32_t kMenuParamCommand = fourCharCode("mpcm");     ///< typeSInt32: a command code below.
inline constexpr std::uint32_t kMenuParamSender = fourCharCode("mpsn");      ///< typeProcessSerialNumber.
inline constexpr std::uint32_t kMenuParamFlags = fourCharCode("mpfl");       ///< typeUInt32: MenuFlag bits.
inline constexpr std::uint32_t kMenuParamActionCount = fourCharCode("mpan"); ///< typeUInt32: length of the list below.
inline constexpr std::uint32_t kMenuParamActions = fourCharCode("mpac");     ///< typeMenuActionList.
inline constexpr std::uint32_t kMenuParamHintSize = fourCharCode("mphs");    ///< typeUInt32: bytes of the text below.
inline constexpr std::uint32_t kMenuParamHintText = fourCharCode("mpht");    ///< typeMenuHintText.

/// Private types, so that nobody coerces the bytes on their way.
inline constexpr std::uint32_t typeMenuActionList = fourCharCode("uibu"); ///< 32-bit menu codes, host byte order.
inline constexpr std::uint32_t typeMenuHintText = fourCharCode("ptxt");   ///< UTF-8, not terminated.

/// Commands.
inline constexpr std::uint32_t kMenuEvtAction = fourCharCode("meoa");     ///< Agent to service: carry a command out.
inline constexpr std::uint32_t kMenuEvtSetOwner = fourCharCode("mesp");   ///< The sender owns the agent from now on.
inline constexpr std::uint32_t kMenuEvtSetOptions = fourCharCode("meso"); ///< New flags, new allowed commands.
inline constexpr std::uint32_t kMenuEvtDoHint = fourCharCode("medh");     ///< Show a text at once.
inline constexpr std::uint32_t kMenuEvtQuit = fourCharCode("meqi");       ///< End at once.

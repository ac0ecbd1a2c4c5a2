#pragma once

#include "tests/support/PrivateXServer.h"

/// The X server on which a test program made with kiv_add_test_program(... X11) runs: DISPLAY and XAUTHORITY of the
/// process name it, so that every ChildProcess of a test (a panel, a window manager) is on it too. It lives as long as
/// the program.
[[nodiscard]] PrivateXServer &testXServer();

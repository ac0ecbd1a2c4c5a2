#pragma once

/// The thickness of the system's menu bar in points. Apart from StatusBar.cpp because AppKit's NSPoint and the agent's
/// own cannot be seen by one file. Main thread only.
[[nodiscard]] double systemStatusBarThickness();

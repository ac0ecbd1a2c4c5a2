#pragma once

/// Colours and fonts of this program's windows, as the desktop has them. On macOS Qt sees to that, and nothing is done.
namespace DesktopLook
{

/// What of the desktop's look is followed.
enum class Part {
    Colours,        ///< Light or dark.
    ColoursAndFonts ///< And the font of the application, with its size.
};

/// Before the application object is made: has its windows be as large as the desktop's others, from the start to the
/// end. What GraphicalSession::prepare does for the agent.
void prepareScale();

/// From now on, as long as the application object lives: windows that are on the screen change with the desktop. To be
/// called once, when the application object is there. Waits for nobody but the X server. Main thread only.
void follow(Part part);

} // namespace DesktopLook

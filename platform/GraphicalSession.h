#pragma once

#include <QString>

namespace GraphicalSession
{

/// Prepares this process for the graphical session it was started in. To be called before the application object is
/// made. An empty string, or one line that says why there is no session to run in.
[[nodiscard]] QString prepare();

} // namespace GraphicalSession

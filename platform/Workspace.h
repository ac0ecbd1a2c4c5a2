#pragma once

#include <QString>

/// Opens things with the session's default programs. Results are not told: there is nothing to be done about a failure.
/// Main thread only; never waits for the program.
namespace Workspace
{

/// Opens a file. One that does not exist is left alone, silently.
void openFile(const QString &path);

/// Opens an address; a text that is none is left alone, silently.
void openUrl(const QString &address);

} // namespace Workspace

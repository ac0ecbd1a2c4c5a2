#pragma once

#include <QString>

/// Opens things with the session's default programs. Results are not told, for there is nothing to be done about a
/// failure; it is a warning in the log.
/// Main thread only; never waits for the program.
namespace Workspace
{

/// Opens a file. One that does not exist is left alone.
void openFile(const QString &path);

/// Opens an address; a text that is none is left alone.
void openUrl(const QString &address);

} // namespace Workspace

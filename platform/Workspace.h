#pragma once

#include <QString>

/// Opens things with the session's default programs. There are no results: a caller can do nothing about a failure,
/// which is a warning in the log. Main thread only; never waits for the program.
namespace Workspace
{

/// Opens a file, or runs it when it is a program. One that does not exist is left alone.
void openFile(const QString &path);

/// Opens an address; a text that is none is left alone.
void openUrl(const QString &address);

} // namespace Workspace

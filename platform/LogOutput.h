#pragma once

/// Where the lines of Qt's logging go: to standard error, whatever that is, and nowhere else.
namespace LogOutput
{

/// Sends them there from now on. Some builds of Qt would hand them to the system log where standard error is no
/// terminal, and there only three lines of this program's belong.
///
/// A slow reader of standard error never blocks the program: a line that cannot be written at once is lost, on a
/// terminal from where that is full, and a line longer than 4 kB, which is what a pipe accepts in one piece, is cut. To
/// be called first of all: in a program that is started without standard error, the connection to the display would
/// otherwise get descriptor 2, and the lines with it.
void useStandardError();

} // namespace LogOutput

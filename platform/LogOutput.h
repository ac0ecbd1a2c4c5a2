#pragma once

/// Where the lines of Qt's logging go: to standard error, whatever that is, and nowhere else.
namespace LogOutput
{

/// Sends them there from now on. Some builds of Qt would hand them to the system log where standard error is no
/// terminal, and there only three lines of this program's belong.
///
/// Nobody who reads them can hold the program up: a line that standard error does not take at once is lost, and what is
/// longer than a pipe takes in one piece, 4 kB, is cut. To be called first of all: a program that is started without
/// standard error would otherwise get its connection to the display in that place, and write its lines there.
void useStandardError();

} // namespace LogOutput

#pragma once

namespace kwa {

// Starts a program and waits without a time limit until it ends. The command line is the path alone, without quotes.
// The exit code is read and discarded. A failure to start the program or to wait goes to ReportLastError only.
//
// programPath  zero-terminated 8-bit text
//
// Returns false when there is no memory for the command line; nothing is started then. Returns true in every other
// case.
bool RunDpinst(const char* programPath);

}  // namespace kwa

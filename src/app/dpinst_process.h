#pragma once

namespace kwa {

// Starts a program with its bare path as the whole command line, unquoted, and waits without a time limit until it has
// ended. Its exit code is read and discarded. A failure to start it or to wait goes to ReportLastError only.
//
// programPath  zero-terminated 8-bit text
//
// Returns false, having started nothing, when there is no memory for the command line; true in every other case.
bool RunDpinst(const char* programPath);

}  // namespace kwa

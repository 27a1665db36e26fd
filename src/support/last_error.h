#pragma once

namespace kwa {

// Formats the system's text for the last error of the calling thread and discards it. The installer shows no messages,
// but a debugger that stops here sees the error and its text. Call it directly after the failed call. Throws nothing.
void ReportLastError();

}  // namespace kwa

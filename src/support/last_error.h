#pragma once

namespace kwa {

// Formats the system's text for the calling thread's last error and throws it away: the installer has nobody to tell,
// and a debugger that stops here finds the error with its text. Call it directly after the failed call. Raises nothing.
void ReportLastError();

}  // namespace kwa

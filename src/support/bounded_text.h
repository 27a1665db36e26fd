#pragma once

#include <cstddef>

namespace kwa {

// Capacity, in bytes and terminator included, of every path, name and INF value in this program: the platform's
// MAX_PATH.
constexpr std::size_t kTextCapacity = 260;

// The bounded copy and append of the Microsoft runtime, spelled out here because the msvcrt.dll of Windows 2000 and XP
// does not export them.
//
// A result that does not fit is never truncated: half a path names a different file. Instead nothing of it is copied,
// the destination becomes the empty string, and the caller goes on with that.
//
// destination  zero-terminated 8-bit text; bytes behind the new terminator keep what they held, after a failure as well
// capacity     size of destination in bytes, terminator included
// source       zero-terminated 8-bit text; must not overlap destination
//
// Returns 0, or an error number that is also left in errno; one line then goes to the debugger:
//   EINVAL (22)  destination is null or capacity is 0: destination is not touched
//   EINVAL (22)  source is null, or (append only) destination has no terminator within capacity: destination emptied
//   ERANGE (34)  the result does not fit: destination emptied
int strcpy_s(char* destination, std::size_t capacity, const char* source);
int strcat_s(char* destination, std::size_t capacity, const char* source);

// strcat_s for a destination of kTextCapacity bytes.
void AppendPath(char* destination, const char* source);

}  // namespace kwa

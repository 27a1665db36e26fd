#pragma once

#include <cstddef>

namespace kwa {

// Capacity in bytes, terminator included, of every path, name and INF value in this program: MAX_PATH of Windows.
constexpr std::size_t kTextCapacity = 260;

// The bounded copy and append of the Microsoft runtime. They are implemented here because the msvcrt.dll of Windows
// 2000 and XP does not export them.
//
// A result that does not fit is never truncated, since half a path names a different file. Instead nothing is copied
// and destination becomes the empty string; the caller continues with that.
//
// destination  zero-terminated 8-bit text; the bytes after the new terminator stay unchanged, also after a failure
// capacity     size of destination in bytes, terminator included
// source       zero-terminated 8-bit text; must not overlap destination
//
// Returns 0 or an error number. An error number is also stored in errno, and one line goes to the debugger:
//   EINVAL (22)  destination is null or capacity is 0; destination stays unchanged
//   EINVAL (22)  source is null, or (append only) destination has no terminator within capacity; destination becomes ""
//   ERANGE (34)  the result does not fit; destination becomes ""
int strcpy_s(char* destination, std::size_t capacity, const char* source);
int strcat_s(char* destination, std::size_t capacity, const char* source);

// strcat_s for a destination of kTextCapacity bytes.
void AppendPath(char* destination, const char* source);

}  // namespace kwa

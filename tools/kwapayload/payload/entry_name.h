#pragma once

#include <string>
#include <string_view>

// Archives list their entries in ascending byte order of the upper-case names (UpperCase), and Windows takes two names
// that are the same in upper case for one file.

namespace kwa {

// Why an archive must not hold this name, or "" when it may. A good name is at most 259 bytes of printable ASCII that
// Windows can create as a file in the folder it is appended to: no folder part, no drive, no device such as NUL.
std::string EntryNameFault(std::string_view name);

// Whether the name ends in ".inf", without regard to case.
bool IsInfName(std::string_view name);

}  // namespace kwa

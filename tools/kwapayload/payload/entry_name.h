#pragma once

#include <string>
#include <string_view>

namespace kwa {

// The name with a to z as A to Z. Archives list their entries in ascending byte order of this, and Windows takes two
// names that are equal in it for one file.
std::string UpperCaseName(std::string_view name);

// Why an archive must not hold this name, or "" when it may. A good name is at most 259 bytes of printable ASCII that
// Windows can create as a file in the folder it is appended to: no folder part, no drive, no device such as NUL.
std::string EntryNameFault(std::string_view name);

}  // namespace kwa

#pragma once

#include <string_view>

#include "base/fault.h"

// Archives list their entries in ascending byte order of the upper-case names (UpperCase), and Windows takes two names
// that are the same in upper case for one file.

namespace kwa {

// Whether an archive may hold this name: at most 259 bytes of printable ASCII that Windows can create as a file in the
// folder it is appended to, without a folder part or drive, and no device such as NUL.
Check CheckEntryName(std::string_view name);

// Whether the name ends in ".inf", without regard to case.
bool IsInfName(std::string_view name);

}  // namespace kwa

#pragma once

#include <cstdint>

#include "support/bounded_text.h"

namespace kwa {

// What the driver package says of itself in its INF, both zero-terminated 8-bit text.
struct DriverPackageIdentity {
  char version[kTextCapacity];      // the whole DriverVer value, date and comma included
  char displayName[kTextCapacity];  // the DriverPackageDisplayName value
};

// Reads the identity from the [Version] section of the first INF in a folder.
//
// workFolder   8-bit path with a trailing separator
// version      kTextCapacity bytes; receives DriverVer, cut to 259 characters; "" without an INF, section or key
// displayName  likewise for DriverPackageDisplayName
//
// Returns the characters copied into version, terminator not counted. Raises nothing. With no search handle at all,
// which the platform never gives, returns 0 and leaves both buffers as they are.
std::uint32_t ReadPackageIdentity(const char* workFolder, char* version, char* displayName);

}  // namespace kwa

#pragma once

#include <cstdint>

#include "support/bounded_text.h"

namespace kwa {

// Two values of the driver package's INF, zero-terminated 8-bit text.
struct DriverPackageIdentity {
  char version[kTextCapacity];      // the whole DriverVer value, date and comma included
  char displayName[kTextCapacity];  // the DriverPackageDisplayName value
};

// Reads the identity from the [Version] section of the first INF in a folder.
//
// workFolder   8-bit path with a trailing separator
// version      kTextCapacity bytes; receives DriverVer, cut to 259 bytes; "" without an INF, section or key
// displayName  the same for DriverPackageDisplayName
//
// Returns the number of bytes copied into version, without the terminator. Throws nothing. When the search returns a
// null handle, which Windows never does, the result is 0 and both buffers stay unchanged.
std::uint32_t ReadPackageIdentity(const char* workFolder, char* version, char* displayName);

}  // namespace kwa

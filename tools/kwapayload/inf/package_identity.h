#pragma once

#include <string>

#include "base/byte_span.h"

namespace kwa {

// What the installer will read from the package's INF; see ReadInfValue for the exact rules. Both at most 259
// characters, in the code page that Windows uses.
struct PackageIdentity {
  std::string version;      // the whole DriverVer value
  std::string displayName;  // the DriverPackageDisplayName value
};

PackageIdentity ReadHostPackageIdentity(ByteSpan inf);

}  // namespace kwa

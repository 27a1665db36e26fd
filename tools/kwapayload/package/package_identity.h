#pragma once

#include <string>

#include "inf/inf_text.h"

namespace kwa {

// What the installer will read from the package's INF; see ReadInfValue for the exact rules. Both at most 259
// characters.
struct PackageIdentity {
  std::string version;      // the whole DriverVer value
  std::string displayName;  // the DriverPackageDisplayName value
  // Why it cannot be known what Windows will read, as a text such as "is …", or "". The values are then what is
  // likely, with a '?' for each character that is not.
  std::string fault;
};

PackageIdentity ReadHostPackageIdentity(const InfText& inf);

}  // namespace kwa

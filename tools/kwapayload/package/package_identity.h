#pragma once

#include <string>

#include "base/fault.h"
#include "inf/inf_text.h"

namespace kwa {

// A value that the installer reads from the package's INF.
struct IdentityValue {
  std::string text;    // at most 259 characters, raw
  bool isCut = false;  // whether the INF has more of it
};

// What the installer reads from the package's INF; see ReadProfileValue for the exact rules.
struct PackageIdentity {
  IdentityValue version;      // the whole DriverVer value
  IdentityValue displayName;  // the DriverPackageDisplayName value
  // Whether every Windows reads these values. Where it fails, they are what is likely, with a '?' for each character
  // that is not known.
  Check certainty;
};

PackageIdentity ReadHostPackageIdentity(const InfText& inf);

}  // namespace kwa

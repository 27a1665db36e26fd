#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "base/fault.h"
#include "inf/inf_text.h"

namespace kwa {

// The largest number of characters that the installer reads of a value: its buffer of 260 bytes without the terminator.
constexpr std::size_t kProfileValueLimit = 259;

// A value that the installer reads from the package's INF.
struct IdentityValue {
  std::string text;    // at most kProfileValueLimit characters, raw
  bool isCut = false;  // whether the INF has more of it
};

// What the installer reads from the package's INF.
struct PackageIdentity {
  IdentityValue version;      // the whole DriverVer value
  IdentityValue displayName;  // the DriverPackageDisplayName value
  // Whether every Windows reads these values. Where it fails, they are what is likely, with a '?' for each character
  // that is not known.
  Check certainty;
};

PackageIdentity ReadHostPackageIdentity(const InfText& inf);

// The numbers of DriverVer: year, month and day, then the four numbers of the version. Setup ranks packages in
// this order.
using DriverVersion = std::array<int, 7>;

// Nothing where the value is not one that Setup ranks packages by: a date that exists, as mm/dd/yyyy or mm-dd-yyyy, a
// comma, and one to four numbers up to 65535 with dots between them. Missing numbers are 0. Blanks around both parts
// and a comment after them are allowed, because Setup removes them.
std::optional<DriverVersion> ReadDriverVersion(const std::string& driverVer);

// As a version resource has it, all four numbers: "1.0.42.0".
std::string VersionText(const DriverVersion& version);

}  // namespace kwa

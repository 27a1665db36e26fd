#pragma once

#include <array>
#include <optional>
#include <string>

namespace kwa {

// The value of an INF's DriverVer. Setup ranks packages by the date first, then by the version.
struct DriverVersion {
  std::array<int, 3> date;  // year, month, day
  std::array<int, 4> version;

  // As a version resource has it, all four parts: "1.0.42.0".
  std::string VersionText() const;
};

bool operator<(const DriverVersion& one, const DriverVersion& other);

// Nothing where the value is not one that Setup ranks packages by: a date that exists, as mm/dd/yyyy or mm-dd-yyyy, a
// comma, and one to four numbers up to 65535 with dots between them. Missing numbers are 0. Blanks around both parts
// and a comment after them are allowed, because Setup removes them.
std::optional<DriverVersion> ReadDriverVersion(const std::string& driverVer);

}  // namespace kwa

#pragma once

#include <ostream>
#include <string>
#include <vector>

// INFs and what is read from them, for two readers that must agree: the platform's profile reader, which the installer
// calls, and the host tool's. What is expected was seen of the platform (Wine 8; where Windows is known to differ, the
// case says so) under the ANSI code page 1252.

struct InfCase {
  std::string name;         // fit for a test's name
  std::string bytes;        // the whole file
  std::string version;      // DriverVer of [Version]
  std::string displayName;  // DriverPackageDisplayName of [Version]
};

std::vector<InfCase> InfCases();

inline std::ostream& operator<<(std::ostream& stream, const InfCase& infCase) {
  return stream << infCase.name;
}

#pragma once

#include <string>
#include <vector>

// INFs and what is read from them, for two readers that must agree: the platform's profile reader, which the installer
// calls, and the host tool's. What is expected was seen of the platform (Wine 8) under the ANSI code page 1252.

struct InfCase {
  std::string bytes;        // the whole file
  std::string version;      // DriverVer of [Version]
  std::string displayName;  // DriverPackageDisplayName of [Version]
};

std::vector<InfCase> InfCases();

// A text of ASCII as a UTF-16 file with the little-endian mark.
std::string Utf16Inf(const std::string& text);

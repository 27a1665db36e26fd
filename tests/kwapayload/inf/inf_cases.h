#pragma once

#include <string>
#include <vector>

// INFs and what two readers must read of them: the profile API, which the installer calls, and ReadHostPackageIdentity.
// The expected values are those of Wine 8 with the ANSI code page 1252.

struct InfCase {
  std::string bytes;    // the whole file
  std::string version;  // DriverVer of [Version]
};

std::vector<InfCase> InfCases();

// ASCII text as a little-endian UTF-16 file with the byte-order mark.
std::string Utf16Inf(const std::string& text);

#pragma once

#include <cstdio>

namespace kwa {

// A product family and the devices that the wizard's welcome page names for it.
struct DeviceFamily {
  const char* key;                // part of the package's display name, case-sensitive
  const char* const* rows;        // device names, rowCount of them; a leading line feed starts a new line
  const char* const* germanRows;  // the same in German; equal to rows where the names are the same
  unsigned rowCount;
};

// All families, in the fixed order of their keys.
extern const DeviceFamily kDeviceFamilies[];
extern const unsigned kDeviceFamilyCount;

// The first family with a key that displayName contains, in the fixed order of the families; null when there is none.
const DeviceFamily* FindDeviceFamily(const char* displayName);

// Writes the family's device names, a blank line and the version line to a text stream. For a display name without a
// known key it writes no names, but still the two line ends and the version.
//
// displayName, driverVersion  zero-terminated 8-bit text, written unchanged and without escaping for XML
// german                      nonzero selects the German names
//
// Write errors are not noticed.
void WriteDeviceList(std::FILE* stream, const char* displayName, const char* driverVersion, int german);

}  // namespace kwa

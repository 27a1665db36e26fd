#pragma once

#include <map>
#include <string>

#include "base/byte_span.h"

namespace kwa {

// The version record that Explorer shows.
struct VersionRecord {
  std::string fileVersion;     // "1.0.0.0", from the fixed part
  std::string productVersion;  // likewise
  // Texts of the first language, by key: "FileDescription", … Characters beyond ASCII in UTF-8.
  std::map<std::string, std::string> texts;
};

// Reads a version resource. Returns false when it is none.
bool ReadVersionRecord(ByteSpan resource, VersionRecord* record);

// The version record of a whole file. Empty where it is no Windows program, library or driver, or has none.
VersionRecord FileVersionRecord(ByteSpan file);

}  // namespace kwa

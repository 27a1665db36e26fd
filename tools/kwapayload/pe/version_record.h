#pragma once

#include <map>
#include <optional>
#include <string>

#include "base/byte_span.h"

namespace kwa {

// The version record that Explorer shows.
struct VersionRecord {
  std::string fileVersion;     // "1.0.0.0", from the fixed part
  std::string productVersion;  // likewise
  // Texts of the first language, by key: "FileDescription", … Characters beyond ASCII in UTF-8.
  std::map<std::string, std::string> texts;

  // The text for a key, "" where there is none.
  std::string Text(const std::string& key) const;
};

// Reads a version resource. Nothing where the bytes are none.
std::optional<VersionRecord> ReadVersionRecord(ByteSpan resource);

// The version record of a whole file. Nothing where it is no Windows program, library or driver, or has none.
std::optional<VersionRecord> FileVersionRecord(ByteSpan file);

}  // namespace kwa

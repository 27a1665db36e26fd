#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "base/byte_span.h"
#include "base/fault.h"

namespace kwa {

// One file that an archive must hold.
struct ContentsFile {
  char archive;  // 'A' or 'B'
  std::string name;
  std::uint32_t size;  // bytes
  std::string kind;    // as KindText words it
};

// The list of what both archives must hold: archive A before B, each in the order of its upper-case names.
using PayloadContents = std::vector<ContentsFile>;

// Reads a list of contents (payload/contents.json is one), or gives every fault, as raw text: not JSON, a field that is
// missing or of the wrong type, a name that an archive must not hold or that is there twice without regard to case.
// Other fields are ignored.
tl::expected<PayloadContents, std::vector<std::string>> ReadPayloadContents(ByteSpan text);

// A list of contents in the form of payload/contents.json: one line a file, so that a changed file is a changed line.
std::string ContentsText(const PayloadContents& contents);

}  // namespace kwa

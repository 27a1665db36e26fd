#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/byte_span.h"
#include "base/finding.h"

// Tells archives from other data by their structure. An area is the bytes that are searched; offsets are in it.

namespace kwa {

// One entry of an archive as it stands in a file.
struct ArchiveItem {
  std::string_view name;   // not empty, without control characters; else as it stands
  std::uint32_t size;      // bytes of the body
  std::uint64_t position;  // of the body, in bytes from the archive's first byte
  ByteSpan body;
  ByteSpan padding;  // what lies between this body and the next
};

// A sound archive: all that its entries promise is there. Names are not judged beyond that, nor is the padding.
struct ParsedArchive {
  std::uint64_t offset;  // of its first byte
  std::uint64_t size;    // bytes up to the end of the last body's padding, the closing word not counted
  std::vector<ArchiveItem> items;
};

// Reads the archive that begins at an offset. Returns false when none does; *fault is then the first thing that keeps
// the bytes from being one, and *archive is unspecified. `where` of the fault is empty or an entry's escaped name.
bool ReadArchive(ByteSpan area, std::uint64_t offset, ParsedArchive* archive, Finding* fault);

// The sound archives of an area (the bytes of a read-only section), in the order of the file. Four letters in a payload
// file or in a program's data do not count, nor does an archive within a body of another. The search ends with the
// third: no installer has it.
std::vector<ParsedArchive> FindArchives(ByteSpan area);

// What could have been an archive and is none: begins with the magic and a first entry that has a name.
struct BrokenArchive {
  std::uint64_t offset;  // of its first byte
  Finding fault;         // as ReadArchive gives it
};

// The broken archives of an area outside its sound ones, at most 16.
std::vector<BrokenArchive> FindBrokenArchives(ByteSpan area);

bool IsZeroFilled(ByteSpan bytes);

}  // namespace kwa

#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "base/byte_span.h"
#include "base/fault.h"

// Tells archives from other data by their structure. An area is the bytes that are searched; offsets count from its
// first byte.

namespace kwa {

// One entry of an archive, pointing into the bytes that it was read from.
struct ArchiveItem {
  char archive;              // 'A' or 'B'; '-' while it is not known which archive this is
  std::string_view name;     // raw; not empty, without control characters
  ByteSpan body;             // the file itself, below 2^31 bytes
  ByteSpan padding;          // the bytes between this body and the next
  std::uint64_t position;    // of the body, in bytes from the archive's first byte
  std::uint64_t fileOffset;  // of the body, in bytes from the area's first byte
};

// A sound archive: the file has all bytes that the entries promise. Names are not judged beyond that, nor is the
// padding.
struct ParsedArchive {
  std::uint64_t offset;  // of its first byte
  std::uint64_t size;    // bytes up to the end of the last body's padding, without the terminator
  std::vector<ArchiveItem> items;
};

// Bytes of the zero word that follows an archive's last body.
constexpr std::uint64_t kArchiveTerminatorSize = 4;

// Reads the archive that begins at an offset, or says what first keeps the bytes from being one. `where` of the fault
// is an entry's name or empty.
Result<ParsedArchive> ReadArchive(ByteSpan area, std::uint64_t offset);

// Bytes that begin like an archive, with the magic and a first entry that has a name, but are not a sound one.
struct BrokenArchive {
  std::uint64_t offset;  // of the first byte
  Fault fault;           // as ReadArchive gives it
};

// The archives of an area (the bytes of a read-only section), in the order of the file. The magic alone, in a payload
// file or in a program's data, does not count, nor does an archive within a body of another.
struct FoundArchives {
  std::vector<ParsedArchive> sound;   // the search ends with the third: an installer has two
  std::vector<BrokenArchive> broken;  // those before its end, at most 16
};
FoundArchives FindArchives(ByteSpan area);

bool IsZeroFilled(ByteSpan bytes);

}  // namespace kwa

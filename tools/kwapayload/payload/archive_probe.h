#pragma once

#include <cstdint>

#include "archive/archive_format.h"
#include "base/byte_span.h"

// Tells archives from other data by their structure. An area is the bytes that are searched; offsets are in it.

namespace kwa {

// Bounds the work of a search. Each entry looked at costs one; data made to look like ever more archives that overlap
// uses the budget up, and then nothing more is found.
class ProbeBudget {
 public:
  explicit ProbeBudget(std::uint64_t areaSize) : entriesLeft(1024 + areaSize / sizeof(ArchiveEntry) * 16) {}

  // Returns false when the budget is used up.
  bool Take() { return entriesLeft != 0 && entriesLeft-- != 0; }
  bool IsUsedUp() const { return entriesLeft == 0; }

 private:
  std::uint64_t entriesLeft;
};

enum class ArchiveShapeKind {
  None,      // no archive
  Intact,    // magic and count are right
  BadCount,  // all is right but the count
  BadMagic,  // all is right but the magic
  Damaged,   // magic and count may be right, and at least half of the entries are
};

struct ArchiveShape {
  ArchiveShapeKind kind;
  std::uint64_t entryCount;  // how many entries it really has; their table lies within the area
  bool isEndKnown;           // all bodies lie in the area and a zero word is behind them
};

// What lies at an offset.
ArchiveShape ProbeArchive(ByteSpan area, std::uint64_t offset, ProbeBudget* budget);

bool IsZeroFilled(ByteSpan bytes);

// Bytes from an archive's start to its first body.
constexpr std::uint64_t BodiesPosition(std::uint64_t count) {
  return kArchiveHeaderSize + count * sizeof(ArchiveEntry);
}

// The record of an entry of the archive at the offset.
inline ByteSpan EntryRecord(ByteSpan area, std::uint64_t offset, std::uint64_t index) {
  return area.Part(offset + BodiesPosition(index), sizeof(ArchiveEntry));
}

}  // namespace kwa

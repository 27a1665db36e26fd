#include "payload/archive_probe.h"

#include <algorithm>
#include <string_view>

namespace kwa {
namespace {

// Whether a field, or what there is of it, can be that of a name: ended, zeros behind the end, no control characters.
bool IsNameField(ByteSpan field) {
  const std::string_view name = field.TextAt(0, kEntryNameCapacity);
  return !name.empty() && name.size() < field.Size() &&
         std::all_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x20; }) &&
         IsZeroFilled(field.From(name.size()));
}

// Whether a record can be an entry: a name that is ended, and a size that the installer can read.
bool IsEntry(ByteSpan record) {
  // The last byte of the name first: it rules out most of what is none.
  return record.Size() == sizeof(ArchiveEntry) && record.U8(kEntryNameCapacity - 1) == 0 &&
         record.U32(kEntryNameCapacity) < kEntrySizeLimit && IsNameField(record.Part(0, kEntryNameCapacity));
}

// The entries from the table's start up to the first record that is none, at most `limit`.
std::uint64_t CountLeadingEntries(ByteSpan area, std::uint64_t offset, std::uint64_t limit, ProbeBudget* budget) {
  std::uint64_t count = 0;
  while (count < limit && budget->Take() && IsEntry(EntryRecord(area, offset, count))) {
    ++count;
  }
  return count;
}

std::uint64_t CountEntries(ByteSpan area, std::uint64_t offset, std::uint64_t first, std::uint64_t end,
                           ProbeBudget* budget) {
  std::uint64_t count = 0;
  for (std::uint64_t i = first; i < end && budget->Take(); ++i) {
    count += IsEntry(EntryRecord(area, offset, i)) ? 1 : 0;
  }
  return count;
}

// What the sizes of an archive of `count` entries lead to.
struct BodyWalk {
  bool endsInZeroWord;   // all bodies lie in the area and a zero word is behind them
  bool isPaddedByZeros;  // so are all paddings
  bool hasBody;          // some size is not 0
};

BodyWalk WalkBodies(ByteSpan area, std::uint64_t offset, std::uint64_t count, ProbeBudget* budget) {
  BodyWalk walk = {false, true, false};
  std::uint64_t at = offset + BodiesPosition(count);
  for (std::uint64_t i = 0; i < count; ++i) {
    const std::uint32_t size = EntryRecord(area, offset, i).U32(kEntryNameCapacity);
    const std::uint64_t padded = PaddedSize(size);
    if (!budget->Take() || size >= kEntrySizeLimit || !area.Contains(at, padded)) {
      return walk;
    }
    walk.hasBody = walk.hasBody || size != 0;
    walk.isPaddedByZeros = walk.isPaddedByZeros && IsZeroFilled(area.Part(at + size, padded - size));
    at += padded;
  }
  walk.endsInZeroWord = area.Contains(at, 4) && area.U32(at) == 0;
  return walk;
}

}  // namespace

bool IsZeroFilled(ByteSpan bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte == 0; });
}

ArchiveShape ProbeArchive(ByteSpan area, std::uint64_t offset, ProbeBudget* budget) {
  constexpr ArchiveShape kNone = {ArchiveShapeKind::None, 0, false};
  if (!area.Contains(offset, BodiesPosition(1))) {
    return kNone;
  }
  const bool hasMagic = area.U32(offset) == kArchiveMagic;
  const std::uint32_t count = area.U32(offset + 4);
  const std::uint64_t room = (area.Size() - offset - kArchiveHeaderSize) / sizeof(ArchiveEntry);
  const bool mayHaveCount = count >= 1 && count <= room;
  if (!hasMagic) {
    if (!mayHaveCount || CountLeadingEntries(area, offset, count, budget) < count) {
      return kNone;
    }
    const BodyWalk walk = WalkBodies(area, offset, count, budget);
    return walk.endsInZeroWord && walk.hasBody ? ArchiveShape{ArchiveShapeKind::BadMagic, count, true} : kNone;
  }
  const std::uint64_t leading = CountLeadingEntries(area, offset, room, budget);
  const BodyWalk walk = mayHaveCount ? WalkBodies(area, offset, count, budget) : BodyWalk();
  if (walk.endsInZeroWord && (leading == count || (leading > count && walk.isPaddedByZeros))) {
    return {ArchiveShapeKind::Intact, count, true};
  }
  if (walk.endsInZeroWord && walk.hasBody && leading < count) {
    return {ArchiveShapeKind::Damaged, count, true};
  }
  // Behind a table that is shorter than the count says come bodies; behind an entry that is damaged, more entries.
  const bool mayBeOtherCount =
      leading > count || (!IsNameField(EntryRecord(area, offset, leading).Part(0, kEntryNameCapacity)) &&
                          CountEntries(area, offset, leading, std::min<std::uint64_t>(count, room), budget) == 0);
  if (leading >= 1 && leading != count && mayBeOtherCount) {
    const BodyWalk otherWalk = WalkBodies(area, offset, leading, budget);
    if (otherWalk.endsInZeroWord && otherWalk.isPaddedByZeros) {
      return {ArchiveShapeKind::BadCount, leading, true};
    }
  }
  // One good record behind the magic may be chance; two or more are a table.
  if (mayHaveCount && count >= 2 && CountEntries(area, offset, 0, count, budget) * 2 >= count) {
    return {ArchiveShapeKind::Damaged, count, false};
  }
  return kNone;
}

}  // namespace kwa

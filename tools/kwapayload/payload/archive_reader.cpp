#include "payload/archive_reader.h"

#include <algorithm>
#include <string>
#include <utility>

#include "archive/archive_format.h"
#include "base/escaped_text.h"

namespace kwa {
namespace {

constexpr std::uint32_t kWordSize = 4;
constexpr std::size_t kMaxArchives = 3;
constexpr std::size_t kMaxBrokenArchives = 16;

// Bytes from an archive's start to its first body.
constexpr std::uint64_t BodiesPosition(std::uint64_t count) {
  return kArchiveHeaderSize + count * sizeof(ArchiveEntry);
}

// What keeps a field from being that of a name, or an empty text.
Finding NameFieldFault(ByteSpan field) {
  const std::string_view name = field.TextAt(0, kEntryNameCapacity);
  const auto fault = [](const char* what, const char* code) { return Finding{Severity::Error, "", what, code}; };
  if (name.empty()) {
    return fault("has no name", "name-empty");
  }
  if (name.size() == kEntryNameCapacity) {
    return fault("has a name that is not ended within its 260 bytes", "name-not-ended");
  }
  if (std::any_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; })) {
    return fault("has a name with control characters", "name-control");
  }
  if (!IsZeroFilled(field.From(name.size()))) {
    return fault("has bytes other than zero behind its name", "name-not-zero-filled");
  }
  return {};
}

// Whether what lies at an offset, where the magic stands, has a first entry with a name.
bool HasFirstName(ByteSpan area, std::uint64_t offset) {
  const ByteSpan field = area.Part(offset + kArchiveHeaderSize, kEntryNameCapacity);
  return field.Size() == kEntryNameCapacity && NameFieldFault(field).what.empty();
}

// Calls `visit` with the offset of each magic outside sound archives, in their order, and with the archive or the fault
// there, until it returns false.
//
// The work is linear, even where tables are made to overlap: the name field of one is then made of another's names and
// sizes, and as both need text where the other has zeros, one of the two soon has a size that leads out of the area.
template <typename Visit>
void ForEachMagic(ByteSpan area, Visit visit) {
  for (std::uint64_t offset = 0; area.Contains(offset, BodiesPosition(1)); offset += kWordSize) {
    if (area.U32(offset) != kArchiveMagic) {
      continue;
    }
    ParsedArchive archive;
    Finding fault;
    const bool isSound = ReadArchive(area, offset, &archive, &fault);
    const std::uint64_t size = archive.size;
    if (!visit(offset, isSound ? &archive : nullptr, fault)) {
      return;
    }
    offset += isSound ? size : 0;
  }
}

}  // namespace

bool IsZeroFilled(ByteSpan bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte == 0; });
}

bool ReadArchive(ByteSpan area, std::uint64_t offset, ParsedArchive* archive, Finding* fault) {
  const auto fail = [fault](std::string_view name, const std::string& what, const char* code) {
    *fault = {Severity::Error, EscapedText(name), what, code};
    return false;
  };
  const std::uint64_t count = area.U32(offset + kWordSize);
  const std::string countText = std::to_string(count);
  *archive = {offset, BodiesPosition(count), {}};
  if (area.U32(offset) != kArchiveMagic) {
    return fail("", "does not begin with \"KWAP\"", "magic");
  }
  if (count == 0) {
    return fail("", "has no entries", "no-entries");
  }
  if (!area.Contains(offset, archive->size)) {
    return fail("", "ends within its table of " + countText + " entries", "table-past-end");
  }
  for (std::uint64_t i = 0; i < count; ++i) {
    const ByteSpan record = area.Part(offset + BodiesPosition(i), sizeof(ArchiveEntry));
    if (const Finding nameFault = NameFieldFault(record.Part(0, kEntryNameCapacity)); !nameFault.what.empty()) {
      return fail("",
                  "its table of " + countText + " entries ends behind entry " + std::to_string(i) + ": the next one " +
                      nameFault.what,
                  nameFault.code.c_str());
    }
    const std::string_view name = record.TextAt(0, kEntryNameCapacity);
    const std::uint32_t size = record.U32(kEntryNameCapacity);
    if (size >= kEntrySizeLimit) {
      return fail(name, "has " + std::to_string(size) + " bytes; the installer reads bodies below 2147483648",
                  "size-too-large");
    }
    const std::uint64_t padding = PaddedSize(size) - size;
    if (!area.Contains(offset + archive->size, size + padding)) {
      return fail(name, "its body of " + std::to_string(size) + " bytes runs past the end of the data",
                  "body-past-end");
    }
    const ByteSpan bodies = area.From(offset + archive->size);
    archive->items.push_back({name, size, archive->size, bodies.Part(0, size), bodies.Part(size, padding)});
    archive->size += size + padding;
  }
  const std::uint64_t end = offset + archive->size;
  if (!area.Contains(end, kWordSize) || area.U32(end) != 0) {
    return fail("", "no zero word follows the last body", "closing-word");
  }
  return true;
}

std::vector<ParsedArchive> FindArchives(ByteSpan area) {
  std::vector<ParsedArchive> archives;
  ForEachMagic(area, [&](std::uint64_t, ParsedArchive* archive, const Finding&) {
    if (archive != nullptr) {
      archives.push_back(std::move(*archive));
    }
    return archives.size() < kMaxArchives;
  });
  return archives;
}

std::vector<BrokenArchive> FindBrokenArchives(ByteSpan area) {
  std::vector<BrokenArchive> broken;
  ForEachMagic(area, [&](std::uint64_t offset, ParsedArchive* archive, const Finding& fault) {
    if (archive == nullptr && HasFirstName(area, offset)) {
      broken.push_back({offset, fault});
    }
    return broken.size() < kMaxBrokenArchives;
  });
  return broken;
}

}  // namespace kwa

#include "payload/archive_reader.h"

#include <algorithm>
#include <string>
#include <utility>

#include "archive/archive_format.h"

namespace kwa {
namespace {

constexpr std::uint32_t kWordSize = 4;
constexpr std::size_t kMaxArchives = 3;
constexpr std::size_t kMaxBrokenArchives = 16;

// Bytes from an archive's start to its first body.
constexpr std::uint64_t BodiesPosition(std::uint64_t count) {
  return kArchiveHeaderSize + count * sizeof(ArchiveEntry);
}

// What keeps a field from being that of a name.
Check CheckNameField(ByteSpan field) {
  const std::string_view name = field.TextAt(0, kEntryNameCapacity);
  if (name.empty()) {
    return Failure("has no name", "name-empty");
  }
  if (name.size() == kEntryNameCapacity) {
    return Failure("has a name without a terminator within its 260 bytes", "name-not-ended");
  }
  if (std::any_of(name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; })) {
    return Failure("has a name with control characters", "name-control");
  }
  if (!IsZeroFilled(field.From(name.size()))) {
    return Failure("has bytes other than zero after its name", "name-not-zero-filled");
  }
  return {};
}

}  // namespace

bool IsZeroFilled(ByteSpan bytes) {
  return std::all_of(bytes.begin(), bytes.end(), [](std::uint8_t byte) { return byte == 0; });
}

Result<ParsedArchive> ReadArchive(ByteSpan area, std::uint64_t offset) {
  const std::uint64_t count = area.U32(offset + kWordSize);
  const std::string countText = std::to_string(count);
  ParsedArchive archive = {offset, BodiesPosition(count), {}};
  if (area.U32(offset) != kArchiveMagic) {
    return Failure("does not begin with \"KWAP\"");
  }
  if (count == 0) {
    return Failure("has no entries", "no-entries");
  }
  if (!area.Contains(offset, archive.size)) {
    return Failure("ends within its table of " + countText + " entries", "table-past-end");
  }
  for (std::uint64_t i = 0; i < count; ++i) {
    const ByteSpan record = area.Part(offset + BodiesPosition(i), sizeof(ArchiveEntry));
    if (const Check field = CheckNameField(record.Part(0, kEntryNameCapacity)); !field) {
      return Failure("its table of " + countText + " entries ends after entry " + std::to_string(i) +
                         ": the next one " + field.error().what,
                     field.error().code);
    }
    const std::string_view name = record.TextAt(0, kEntryNameCapacity);
    const std::uint32_t size = record.U32(kEntryNameCapacity);
    const std::string sizeText = std::to_string(size);
    if (size >= kEntrySizeLimit) {
      return Failure("has " + sizeText + " bytes; the installer reads bodies below 2147483648", "size-too-large",
                     std::string(name));
    }
    const std::uint64_t padding = PaddedSize(size) - size;
    if (!area.Contains(offset + archive.size, size + padding)) {
      return Failure("its body of " + sizeText + " bytes runs past the end of the data", "body-past-end",
                     std::string(name));
    }
    const ByteSpan bodies = area.From(offset + archive.size);
    archive.items.push_back(
        {'-', name, bodies.Part(0, size), bodies.Part(size, padding), archive.size, offset + archive.size});
    archive.size += size + padding;
  }
  const std::uint64_t end = offset + archive.size;
  if (!area.Contains(end, kArchiveTerminatorSize) || area.U32(end) != 0) {
    return Failure("no zero word follows the last body", "closing-word");
  }
  return archive;
}

FoundArchives FindArchives(ByteSpan area) {
  // The work is linear, even where tables overlap on purpose: the name field of one table then consists of another's
  // names and sizes. Both need text where the other has zeros, so one of the two soon has a size that leads out of the
  // area.
  FoundArchives found;
  for (std::uint64_t offset = 0; area.Contains(offset, BodiesPosition(1)) && found.sound.size() < kMaxArchives;
       offset += kWordSize) {
    if (area.U32(offset) != kArchiveMagic ||
        !CheckNameField(area.Part(offset + kArchiveHeaderSize, kEntryNameCapacity))) {
      continue;
    }
    Result<ParsedArchive> archive = ReadArchive(area, offset);
    if (archive) {
      offset += archive->size;
      found.sound.push_back(std::move(*archive));
    } else if (found.broken.size() < kMaxBrokenArchives) {
      found.broken.push_back({offset, std::move(archive.error())});
    }
  }
  return found;
}

}  // namespace kwa

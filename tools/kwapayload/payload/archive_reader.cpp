#include "payload/archive_reader.h"

#include <algorithm>
#include <cstdint>

#include "archive/archive_format.h"
#include "base/escaped_text.h"
#include "payload/archive_probe.h"

namespace kwa {
namespace {

constexpr std::uint32_t kWordSize = 4;
constexpr std::uint64_t kForgetStep = 4 * 1024 * 1024;

// More than anyone reads; a file that is made of damage does not fill the memory with them.
constexpr std::size_t kMaxFindings = 1000;
constexpr std::size_t kMaxArchives = 16;

// Notes what is wrong with the name field of an item.
void CheckNameField(ByteSpan record, std::vector<Finding>& findings) {
  const ByteSpan field = record.Part(0, kEntryNameCapacity);
  const std::string_view name = field.TextAt(0, kEntryNameCapacity);
  const std::string where = EscapedText(name);
  if (name.size() == kEntryNameCapacity) {
    findings.push_back({Severity::Error, where, "the name is not ended within its 260 bytes", "name-not-ended"});
  } else if (name.empty()) {
    findings.push_back({Severity::Error, where, "an entry has no name", "name-empty"});
  } else if (!IsZeroFilled(field.From(name.size()))) {
    findings.push_back(
        {Severity::Warning, where, "the bytes behind the name's end are not zero", "name-not-zero-filled"});
  }
}

// Fills in items, size and findings of an archive of `count` entries whose table lies within the area.
void Describe(ByteSpan area, std::uint64_t count, ParsedArchive* archive) {
  const std::uint64_t bodiesPosition = BodiesPosition(count);
  std::uint64_t position = bodiesPosition;
  bool areBodiesKnown = true;
  std::vector<Finding> paddingFindings;
  archive->items.reserve(static_cast<std::size_t>(count));
  for (std::uint64_t i = 0; i < count; ++i) {
    const ByteSpan record = EntryRecord(area, archive->offset, i);
    ArchiveItem item = {record.TextAt(0, kEntryNameCapacity), record.U32(kEntryNameCapacity), position, {}};
    if (archive->findings.size() < kMaxFindings) {
      CheckNameField(record, archive->findings);
    }
    const std::uint64_t padded = PaddedSize(item.size);
    if (areBodiesKnown && item.size >= kEntrySizeLimit) {
      archive->findings.push_back(
          {Severity::Error, EscapedText(item.name),
           "has " + std::to_string(item.size) + " bytes; the installer reads bodies below 2147483648",
           "size-too-large"});
      areBodiesKnown = false;
    } else if (areBodiesKnown && !area.Contains(archive->offset + position, padded)) {
      archive->findings.push_back({Severity::Error, EscapedText(item.name),
                                   "its body of " + std::to_string(item.size) + " bytes runs past the end of the data",
                                   "body-past-end"});
      areBodiesKnown = false;
    }
    if (areBodiesKnown) {
      item.body = area.Part(archive->offset + position, item.size);
      if (paddingFindings.size() < kMaxFindings &&
          !IsZeroFilled(area.Part(archive->offset + position + item.size, padded - item.size))) {
        paddingFindings.push_back(
            {Severity::Warning, EscapedText(item.name), "the padding behind its body is not zero", "padding"});
      }
      position += padded;
    }
    archive->items.push_back(item);
  }
  archive->size = position;
  if (!areBodiesKnown) {
    return;
  }
  const std::uint64_t end = archive->offset + archive->size;
  if (area.Contains(end, kWordSize) && area.U32(end) == 0) {
    archive->findings.insert(archive->findings.end(), paddingFindings.begin(), paddingFindings.end());
  } else if (paddingFindings.empty()) {
    archive->findings.push_back({Severity::Warning, "", "no zero word follows the last body", "closing-word"});
  } else {
    archive->findings.push_back(
        {Severity::Error, "", "the sizes do not add up: no zero word follows the last body", "sizes"});
  }
}

// Reads the archive at an offset, if there is one. Sets *isEndKnown to whether it is known where the archive ends.
bool RecognizeArchive(ByteSpan area, std::uint64_t offset, ProbeBudget* budget, ParsedArchive* archive,
                      bool* isEndKnown) {
  const ArchiveShape shape = ProbeArchive(area, offset, budget);
  if (shape.kind == ArchiveShapeKind::None) {
    return false;
  }
  *archive = {offset, 0, area.U32(offset + kWordSize), {}, {}};
  *isEndKnown = shape.isEndKnown;
  if (shape.kind == ArchiveShapeKind::BadMagic) {
    archive->findings.push_back(
        {Severity::Error, "",
         "begins with \"" + EscapedText(area.Part(offset, kWordSize).Text()) + "\" instead of \"KWAP\"", "magic"});
  } else if (shape.kind == ArchiveShapeKind::BadCount) {
    archive->findings.push_back(
        {Severity::Error, "",
         "says that it has " + std::to_string(archive->count) + " entries, but has " + std::to_string(shape.entryCount),
         "count"});
  }
  Describe(area, shape.entryCount, archive);
  return true;
}

}  // namespace

bool ParsedArchive::IsReadable() const {
  return !items.empty() && std::none_of(findings.begin(), findings.end(),
                                        [](const Finding& finding) { return finding.severity == Severity::Error; });
}

std::vector<ParsedArchive> FindArchives(ByteSpan area, const ForgetBytes& forget) {
  std::vector<ParsedArchive> archives;
  ProbeBudget budget(area.Size());
  std::size_t firstDoubtful = SIZE_MAX;
  std::uint64_t forgotten = 0;
  for (std::uint64_t offset = 0;
       area.Contains(offset, BodiesPosition(1)) && !budget.IsUsedUp() && archives.size() < kMaxArchives;) {
    if (forget && offset - forgotten >= kForgetStep) {
      forget(area.Part(forgotten, offset - forgotten));
      forgotten = offset;
    }
    ParsedArchive archive;
    bool isEndKnown = false;
    if (!RecognizeArchive(area, offset, &budget, &archive, &isEndKnown)) {
      offset += kWordSize;
      continue;
    }
    if (isEndKnown) {
      offset += archive.size + kWordSize;
    } else {
      // Somewhere behind the table, among bodies that may hold archives themselves.
      offset += BodiesPosition(archive.items.size());
      firstDoubtful = std::min(firstDoubtful, archives.size());
    }
    archives.push_back(std::move(archive));
  }
  // What was found among the bodies of a damaged archive is theirs, but for the last: the installer's other archive.
  if (firstDoubtful == 0 && archives.size() > 2) {
    archives.erase(archives.begin() + 1, archives.end() - 1);
  } else if (firstDoubtful == 1 && archives.size() > 2) {
    archives.erase(archives.begin() + 2, archives.end());
  }
  // A table without the magic counts only where an archive is missing.
  const auto hasMagic = [area](const ParsedArchive& archive) { return area.U32(archive.offset) == kArchiveMagic; };
  if (std::count_if(archives.begin(), archives.end(), hasMagic) >= 2) {
    archives.erase(std::stable_partition(archives.begin(), archives.end(), hasMagic), archives.end());
  }
  return archives;
}

ParsedArchive ReadArchiveAt(ByteSpan bytes) {
  ParsedArchive archive = {};
  ProbeBudget budget(bytes.Size());
  bool isEndKnown = false;
  if (RecognizeArchive(bytes, 0, &budget, &archive, &isEndKnown)) {
    return archive;
  }
  archive.count = bytes.U32(kWordSize);
  if (bytes.U32(0) != kArchiveMagic) {
    archive.findings.push_back({Severity::Error, "", "does not begin with \"KWAP\"", "magic"});
  } else if (archive.count == 0) {
    archive.findings.push_back({Severity::Error, "", "has no entries", "no-entries"});
  } else if (!bytes.Contains(0, BodiesPosition(archive.count))) {
    archive.findings.push_back({Severity::Error, "",
                                "ends within its table of " + std::to_string(archive.count) + " entries",
                                "table-past-end"});
  } else {
    Describe(bytes, archive.count, &archive);
  }
  return archive;
}

}  // namespace kwa

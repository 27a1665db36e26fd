#include "installer/installer_file.h"

#include <algorithm>
#include <functional>
#include <string>
#include <utility>

#include "archive/archive_format.h"

namespace kwa {
namespace {

// The sections with read-only data in the order of the file. A section that begins within another is left out: linkers
// do not make such files, and a hostile one would have the same bytes searched many times.
std::vector<PeSection> SectionsToSearch(const PeImage& image) {
  std::vector<PeSection> sorted = image.sections;
  std::stable_sort(sorted.begin(), sorted.end(),
                   [](const PeSection& left, const PeSection& right) { return left.fileOffset < right.fileOffset; });
  std::vector<PeSection> sections;
  std::uint64_t end = 0;
  for (const PeSection& section : sorted) {
    if (section.IsReadOnlyData() && section.fileOffset >= end) {
      end = std::uint64_t{section.fileOffset} + section.bytes.Size();
      sections.push_back(section);
    }
  }
  return sections;
}

// Adds an archive that was found in an area of the file, which begins at `areaOffset`.
void AddArchive(ParsedArchive archive, char letter, std::uint64_t areaOffset, InstallerFile* installer) {
  installer->archives.push_back({letter, areaOffset + archive.offset, archive.size});
  for (ArchiveItem& item : archive.items) {
    item.archive = letter;
    item.fileOffset += areaOffset;
    installer->items.push_back(item);
  }
}

void FindInSections(InstallerFile* installer) {
  Findings broken;
  for (const PeSection& section : SectionsToSearch(*installer->image)) {
    FoundArchives found = FindArchives(section.bytes);
    for (ParsedArchive& archive : found.sound) {
      // A third archive is an error, whatever its letter.
      AddArchive(std::move(archive), installer->archives.empty() ? 'A' : 'B', section.fileOffset, installer);
    }
    for (const auto& [offset, fault] : found.broken) {
      broken.AddError("archive at offset " + std::to_string(section.fileOffset + offset) +
                          (fault.where.empty() ? "" : ", ") + fault.where,
                      fault.what, fault.code);
    }
  }
  if (installer->IsWhole()) {
    return;
  }
  // If the file is cut off, that is why archives are missing.
  if (installer->findings.Empty()) {
    const std::size_t count = installer->archives.size();
    const std::string number = count == 0 ? "no" : count == 1 ? "one" : "more than two";
    installer->findings.AddError(
        "", "holds " + number + " payload archive" + (count == 1 ? "" : "s") + " in its read-only data instead of two",
        "archive-count");
  }
  installer->findings.AddAll(broken);
}

}  // namespace

Result<InstallerFile> ReadInstallerFile(ByteSpan bytes) {
  InstallerFile installer;
  installer.bytes = bytes;
  if (bytes.StartsWith("MZ")) {
    Result<PeImage> image = ReadPeImage(bytes);
    if (!image) {
      return tl::unexpected(image.error());
    }
    installer.image = std::move(*image);
    const std::vector<PeSection>& sections = installer.image->sections;
    // The sections after the first that is cut off are missing for the same reason.
    const auto cut = std::find_if(sections.begin(), sections.end(), std::mem_fn(&PeSection::IsTruncated));
    if (cut != sections.end()) {
      const std::string missing = std::to_string(cut->fileSize - cut->bytes.Size());
      installer.findings.AddError("section " + cut->name, "the file ends " + missing + " bytes before it does",
                                  "truncated");
    }
    FindInSections(&installer);
    return installer;
  }
  installer.form = InputForm::Archive;
  if (bytes.U32(0) != kArchiveMagic) {
    return Failure("is neither an installer nor a payload archive");
  }
  Result<ParsedArchive> archive = ReadArchive(bytes, 0);
  if (!archive) {
    installer.findings.AddError(archive.error().where, archive.error().what, archive.error().code);
    return installer;
  }
  const std::uint64_t end = archive->size + kArchiveTerminatorSize;
  if (!IsZeroFilled(bytes.From(end))) {
    installer.findings.AddWarning("", std::to_string(bytes.Size() - end) + " bytes follow the archive's terminator",
                                  "trailing-bytes");
  }
  AddArchive(std::move(*archive), '-', 0, &installer);
  return installer;
}

}  // namespace kwa

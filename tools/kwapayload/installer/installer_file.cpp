#include "installer/installer_file.h"

#include <algorithm>
#include <utility>

#include "archive/archive_format.h"
#include "base/ascii_text.h"
#include "report/escaped_text.h"
#include "files/tool_failure.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

constexpr std::uint64_t kClosingWordSize = 4;

// The sections with read-only data in the order of the file. Those that begin within another are left out: sections do
// not overlap, unless someone wants the file read many times over.
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

void FindTruncation(InstallerFile* installer) {
  // The sections behind a cut are missing for the same reason.
  const std::vector<PeSection>& sections = installer->image->sections;
  const auto cut =
      std::find_if(sections.begin(), sections.end(), [](const PeSection& section) { return section.IsTruncated(); });
  if (cut != sections.end()) {
    installer->findings.AddError(
        "section " + EscapedText(cut->name),
        "the file ends " + std::to_string(cut->fileSize - cut->bytes.Size()) + " bytes before it does", "truncated");
  }
}

void FindInSections(InstallerFile* installer) {
  const std::vector<PeSection> sections = SectionsToSearch(*installer->image);
  for (const PeSection& section : sections) {
    for (ParsedArchive& archive : FindArchives(section.bytes)) {
      // No letter is needed for one too many.
      const std::string letter = installer->archives.empty() ? "A" : "B";
      installer->archives.push_back({letter, section.fileOffset + archive.offset, std::move(archive)});
    }
  }
  if (installer->IsWhole()) {
    return;
  }
  // A file that was cut off lacks archives for no other reason.
  if (installer->findings.Empty()) {
    const std::size_t count = installer->archives.size();
    const std::string number = count == 0 ? "no" : count == 1 ? "one" : "more than two";
    installer->findings.AddError(
        "", "holds " + number + " payload archive" + (count == 1 ? "" : "s") + " in its read-only data instead of two",
        "archive-count");
  }
  for (const PeSection& section : sections) {
    for (BrokenArchive& broken : FindBrokenArchives(section.bytes)) {
      Finding& fault = broken.fault;
      fault.where = "archive at offset " + std::to_string(section.fileOffset + broken.offset) +
                    (fault.where.empty() ? "" : ", ") + fault.where;
      installer->findings.Add(std::move(fault));
    }
  }
}

}  // namespace

std::string LocatedArchive::Where(const ArchiveItem& item) const {
  return (letter == "-" ? "" : "archive " + letter + ", ") + EscapedText(item.name);
}

InstallerFile ReadInstallerFile(ByteSpan bytes, const std::filesystem::path& path) {
  InstallerFile installer;
  std::string fault;
  if (bytes.StartsWith("MZ")) {
    if (!ReadPeImage(bytes, &installer.image.emplace(), &fault)) {
      throw ToolFailure(path, fault);
    }
    FindTruncation(&installer);
    FindInSections(&installer);
    return installer;
  }
  if (bytes.U32(0) != kArchiveMagic) {
    throw ToolFailure(path, "is neither an installer nor a payload archive");
  }
  ParsedArchive archive;
  if (Finding finding; !ReadArchive(bytes, 0, &archive, &finding)) {
    installer.findings.Add(std::move(finding));
    return installer;
  }
  const std::uint64_t end = archive.size + kClosingWordSize;
  if (!IsZeroFilled(bytes.From(end))) {
    installer.findings.AddWarning("", std::to_string(bytes.Size() - end) + " bytes follow the archive's closing word",
                                  "trailing-bytes");
  }
  installer.archives.push_back({"-", 0, std::move(archive)});
  return installer;
}

InstallerFile ReadSoundInstallerFile(ByteSpan bytes, const std::filesystem::path& path) {
  InstallerFile installer = ReadInstallerFile(bytes, path);
  std::vector<Fault> faults;
  for (const Finding& finding : installer.findings) {
    if (finding.severity == Severity::Error) {
      faults.push_back({ShownPath(path), finding.where + (finding.where.empty() ? "" : ": ") + finding.what});
    }
  }
  if (!faults.empty()) {
    throw ToolFailure(std::move(faults));
  }
  return installer;
}

const ArchiveItem* FindInf(const InstallerFile& installer) {
  const ArchiveItem* first = nullptr;
  for (const LocatedArchive& located : installer.archives) {
    for (const ArchiveItem& item : located.archive.items) {
      if (IsInfName(item.name) && (first == nullptr || UpperCase(item.name) < UpperCase(first->name))) {
        first = &item;
      }
    }
  }
  return first;
}

}  // namespace kwa

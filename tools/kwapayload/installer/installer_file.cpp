#include "installer/installer_file.h"

#include <algorithm>
#include <utility>

#include "archive/archive_format.h"
#include "base/escaped_text.h"
#include "base/tool_failure.h"
#include "payload/archive_probe.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

constexpr std::size_t kInstallerArchives = 2;
constexpr std::uint64_t kClosingWordSize = 4;

void FindInSections(const ForgetBytes& forget, InstallerFile* installer) {
  std::uint64_t searchedEnd = 0;
  for (const PeSection& section : installer->image->sections) {
    // The sections behind a cut are missing for the same reason.
    if (section.IsTruncated() && installer->findings.empty()) {
      installer->findings.push_back(
          {Severity::Error, "section " + EscapedText(section.name),
           "the file ends " + std::to_string(section.fileSize - section.bytes.Size()) + " bytes before it does",
           "truncated"});
    }
    // Sections do not overlap in the file, unless someone wants it read many times over.
    if (!section.IsReadOnlyData() || section.fileOffset < searchedEnd) {
      continue;
    }
    searchedEnd = std::uint64_t{section.fileOffset} + section.bytes.Size();
    for (ParsedArchive& archive : FindArchives(section.bytes, forget)) {
      const std::string letter(1, static_cast<char>('A' + std::min<std::size_t>(installer->archives.size(), 25)));
      const std::uint64_t fileOffset = section.fileOffset + archive.offset;
      installer->archives.push_back({letter, fileOffset, std::move(archive)});
    }
  }
  // A file that was cut off lacks archives for no other reason.
  const std::size_t count = installer->archives.size();
  if (count != kInstallerArchives && installer->findings.empty()) {
    const std::string number = count == 0 ? "no" : count == 1 ? "one" : "more than two";
    installer->findings.push_back(
        {Severity::Error, "",
         "holds " + number + " payload archive" + (count == 1 ? "" : "s") + " in its read-only data instead of two",
         "archive-count"});
  }
}

void AppendErrors(const std::vector<Finding>& findings, const std::string& prefix, const std::filesystem::path& path,
                  std::vector<Fault>* faults) {
  for (const Finding& finding : findings) {
    if (finding.severity == Severity::Error) {
      const std::string separator = prefix.empty() || finding.where.empty() ? "" : ", ";
      const std::string where = prefix + separator + finding.where;
      faults->push_back({ShownPath(path), where + (where.empty() ? "" : ": ") + finding.what});
    }
  }
}

}  // namespace

InstallerFile ReadInstallerFile(ByteSpan bytes, const std::filesystem::path& path, const ForgetBytes& forget) {
  InstallerFile installer;
  if (bytes.StartsWith("MZ")) {
    std::string fault;
    if (!ReadPeImage(bytes, &installer.image.emplace(), &fault)) {
      throw ToolFailure(path, fault);
    }
    FindInSections(forget, &installer);
    return installer;
  }
  ParsedArchive archive = ReadArchiveAt(bytes);
  if (archive.items.empty() && bytes.U32(0) != kArchiveMagic) {
    throw ToolFailure(path, "is neither an installer nor a payload archive");
  }
  const std::uint64_t end = archive.size + kClosingWordSize;
  if (archive.IsReadable() && !IsZeroFilled(bytes.From(end))) {
    installer.findings.push_back({Severity::Warning, "",
                                  std::to_string(bytes.Size() - end) + " bytes follow the archive's closing word",
                                  "trailing-bytes"});
  }
  installer.archives.push_back({"-", 0, std::move(archive)});
  return installer;
}

InstallerFile ReadSoundInstallerFile(ByteSpan bytes, const std::filesystem::path& path, const ForgetBytes& forget) {
  InstallerFile installer = ReadInstallerFile(bytes, path, forget);
  std::vector<Fault> faults;
  AppendErrors(installer.findings, "", path, &faults);
  for (const LocatedArchive& located : installer.archives) {
    AppendErrors(located.archive.findings, located.letter == "-" ? "" : "archive " + located.letter, path, &faults);
  }
  if (!faults.empty()) {
    throw ToolFailure(std::move(faults));
  }
  return installer;
}

const ArchiveItem* FindInf(const InstallerFile& installer) {
  const ArchiveItem* first = nullptr;
  std::string firstName;
  for (const LocatedArchive& located : installer.archives) {
    for (const ArchiveItem& item : located.archive.items) {
      std::string name = UpperCaseName(item.name);
      constexpr std::string_view kExtension = ".INF";
      const bool isInf = name.size() >= kExtension.size() &&
                         name.compare(name.size() - kExtension.size(), kExtension.size(), kExtension) == 0;
      if (isInf && (first == nullptr || name < firstName)) {
        first = &item;
        firstName = std::move(name);
      }
    }
  }
  return first;
}

}  // namespace kwa

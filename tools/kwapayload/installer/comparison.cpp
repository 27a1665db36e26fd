#include "installer/comparison.h"

#include <algorithm>
#include <map>
#include <utility>

#include "base/ascii_text.h"
#include "report/escaped_text.h"
#include "package/package_identity.h"
#include "installer/preview.h"
#include "installer/program_form.h"

namespace kwa {
namespace {

void AddChange(const char* what, const std::string& before, const std::string& after, std::vector<Change>* changes) {
  if (before != after) {
    changes->push_back({what, before, after});
  }
}

std::string CoverText(const ListedFile& file) {
  return !file.isInCatalog ? "" : *file.isInCatalog ? "yes" : "NO";
}

std::vector<Change> CompareFiles(const ListedFile& before, const ListedFile& after) {
  std::vector<Change> changes;
  AddChange("archive", before.archive, after.archive, &changes);
  AddChange("name", before.name, after.name, &changes);
  AddChange("size", std::to_string(before.size), std::to_string(after.size), &changes);
  AddChange("version", before.version, after.version, &changes);
  AddChange("kind", before.kind, after.kind, &changes);
  AddChange("signer", before.Signers(), after.Signers(), &changes);
  AddChange("in the catalog", CoverText(before), CoverText(after), &changes);
  if (changes.empty()) {
    AddChange("content", before.sha256, after.sha256, &changes);
  }
  return changes;
}

void CompareFileLists(const Listing& before, const Listing& after, Comparison* comparison) {
  // By the name under which the installer writes them: to Windows, upper and lower case are the same.
  std::map<std::string, const ListedFile*> rest;
  for (const ListedFile& file : before.files) {
    rest[UpperCase(file.name)] = &file;
  }
  for (const ListedFile& file : after.files) {
    const auto found = rest.find(UpperCase(file.name));
    if (found == rest.end()) {
      comparison->added.push_back(file);
      continue;
    }
    if (std::vector<Change> changes = CompareFiles(*found->second, file); !changes.empty()) {
      comparison->changed.push_back({file.name, std::move(changes)});
    }
    rest.erase(found);
  }
  for (const auto& [name, file] : rest) {
    comparison->removed.push_back(*file);
  }
}

std::vector<Change> CompareIdentities(const Listing& before, const Listing& after) {
  const ListedPackage none = {};
  const ListedPackage& old = before.package ? *before.package : none;
  const ListedPackage& current = after.package ? *after.package : none;
  std::vector<Change> changes;
  AddChange("INF", old.inf, current.inf, &changes);
  AddChange("version", old.version, current.version, &changes);
  AddChange("display name", old.displayName, current.displayName, &changes);
  AddChange("family", old.family, current.family, &changes);
  return changes;
}

std::vector<std::string> ConfigurationLines(const InstallerFile& installer) {
  const ArchiveItem* const inf = FindInf(installer);
  const PackageIdentity identity = inf != nullptr ? ReadHostPackageIdentity(InfText(inf->body)) : PackageIdentity();
  const std::string text = PreviewDpinstConfig(identity, false);
  std::vector<std::string> lines;
  constexpr std::string_view kLineEnd = "\r\n";
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find(kLineEnd, begin), text.size());
    lines.push_back(EscapedText(std::string_view(text).substr(begin, end - begin)));
    begin = end + kLineEnd.size();
  }
  return lines;
}

// By a longest common subsequence: both texts have a few hundred lines.
std::vector<std::vector<std::string>> CompareLines(const std::vector<std::string>& before,
                                                   const std::vector<std::string>& after) {
  // common[i][j]: lines that before has from i and after from j in common.
  std::vector<std::vector<std::size_t>> common(before.size() + 1, std::vector<std::size_t>(after.size() + 1));
  for (std::size_t i = before.size(); i-- > 0;) {
    for (std::size_t j = after.size(); j-- > 0;) {
      common[i][j] = before[i] == after[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
    }
  }
  std::vector<std::vector<std::string>> runs(1);
  for (std::size_t i = 0, j = 0; i < before.size() || j < after.size();) {
    if (i < before.size() && j < after.size() && before[i] == after[j]) {
      ++i;
      ++j;
      if (!runs.back().empty()) {
        runs.emplace_back();
      }
    } else if (j == after.size() || (i < before.size() && common[i + 1][j] >= common[i][j + 1])) {
      runs.back().push_back('-' + before[i++]);
    } else {
      runs.back().push_back('+' + after[j++]);
    }
  }
  if (runs.back().empty()) {
    runs.pop_back();
  }
  return runs;
}

std::vector<std::string> ComparePrograms(const InstallerFile& before, const InstallerFile& after) {
  const std::vector<ProgramPart> old = ProgramParts(before);
  const std::vector<ProgramPart> parts = ProgramParts(after);
  std::vector<std::string> names;
  for (std::size_t i = 0; i < std::max(old.size(), parts.size()); ++i) {
    if (i >= old.size() || i >= parts.size() || !(old[i] == parts[i])) {
      names.push_back(i < parts.size() ? parts[i].name : old[i].name);
    }
  }
  return names;
}

}  // namespace

bool Comparison::IsAlike() const {
  return removed.empty() && added.empty() && changed.empty() && identity.empty() && configuration.empty() &&
         program.empty();
}

Comparison CompareInstallers(const InstallerFile& before, const InstallerFile& after) {
  const Listing old = MakeListing(before);
  const Listing current = MakeListing(after);
  Comparison comparison;
  CompareFileLists(old, current, &comparison);
  comparison.identity = CompareIdentities(old, current);
  comparison.configuration = CompareLines(ConfigurationLines(before), ConfigurationLines(after));
  comparison.program = ComparePrograms(before, after);
  return comparison;
}

}  // namespace kwa

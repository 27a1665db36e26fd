#include "installer/comparison.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "base/ascii_text.h"
#include "installer/preview.h"
#include "installer/program_form.h"

namespace kwa {
namespace {

std::string VersionOf(const InspectedFile& file) {
  return file.version ? file.version->fileVersion : "";
}

bool HaveSameSigners(const std::vector<Signature>& before, const std::vector<Signature>& after) {
  return std::equal(before.begin(), before.end(), after.begin(), after.end(),
                    [](const Signature& left, const Signature& right) {
                      return left.signer == right.signer && left.check.has_value() == right.check.has_value();
                    });
}

std::vector<FileField> CompareFiles(const InspectedFile& before, const InspectedFile& after) {
  std::vector<FileField> fields;
  const auto add = [&fields](bool isSame, FileField field) {
    if (!isSame) {
      fields.push_back(field);
    }
  };
  add(before.item.archive == after.item.archive, FileField::Archive);
  add(before.item.name == after.item.name, FileField::Name);
  add(before.item.body.Size() == after.item.body.Size(), FileField::Size);
  add(VersionOf(before) == VersionOf(after), FileField::Version);
  add(before.kind == after.kind, FileField::Kind);
  add(HaveSameSigners(before.trust.signatures, after.trust.signatures), FileField::Signers);
  add(before.trust.isCovered == after.trust.isCovered, FileField::Coverage);
  add(!fields.empty() || before.sha256 == after.sha256, FileField::Content);
  return fields;
}

void CompareFileLists(const Inspection& before, const Inspection& after, Comparison* comparison) {
  // By the name under which the installer writes them: for Windows, upper and lower case are the same.
  std::map<std::string, const InspectedFile*> rest;
  for (const InspectedFile& file : before.files) {
    rest[UpperCase(file.item.name)] = &file;
  }
  for (const InspectedFile& file : after.files) {
    const auto found = rest.find(UpperCase(file.item.name));
    if (found == rest.end()) {
      comparison->added.push_back(&file);
      continue;
    }
    if (std::vector<FileField> fields = CompareFiles(*found->second, file); !fields.empty()) {
      comparison->changed.push_back({found->second, &file, std::move(fields)});
    }
    rest.erase(found);
  }
  for (const auto& [name, file] : rest) {
    comparison->removed.push_back(file);
  }
}

std::vector<PackageField> ComparePackages(const Inspection& before, const Inspection& after) {
  const DriverPackage none = {};
  const DriverPackage& old = before.package ? *before.package : none;
  const DriverPackage& current = after.package ? *after.package : none;
  std::vector<PackageField> fields;
  const auto add = [&fields](bool isSame, PackageField field) {
    if (!isSame) {
      fields.push_back(field);
    }
  };
  add(old.inf.name == current.inf.name, PackageField::Inf);
  add(old.identity.version.text == current.identity.version.text, PackageField::Version);
  add(old.identity.displayName.text == current.identity.displayName.text, PackageField::DisplayName);
  add(old.family == current.family, PackageField::Family);
  return fields;
}

std::vector<std::string> ConfigurationLines(const Inspection& inspection) {
  const std::string document =
      PreviewDpinstConfig(inspection.package ? inspection.package->identity : PackageIdentity(), false);
  std::vector<std::string> lines;
  constexpr std::string_view kLineEnd = "\r\n";
  for (std::string_view text = document; !text.empty();) {
    const std::size_t end = std::min(text.find(kLineEnd), text.size());
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + kLineEnd.size(), text.size()));
  }
  return lines;
}

// By a longest common subsequence: both texts have a few hundred lines.
std::vector<ChangedLines> CompareLines(const std::vector<std::string>& before, const std::vector<std::string>& after) {
  // common[i][j]: lines that before has from i and after from j in common.
  std::vector<std::vector<std::size_t>> common(before.size() + 1, std::vector<std::size_t>(after.size() + 1));
  for (std::size_t i = before.size(); i-- > 0;) {
    for (std::size_t j = after.size(); j-- > 0;) {
      common[i][j] = before[i] == after[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
    }
  }
  std::vector<ChangedLines> runs;
  bool isInRun = false;
  for (std::size_t i = 0, j = 0; i < before.size() || j < after.size();) {
    if (i < before.size() && j < after.size() && before[i] == after[j]) {
      ++i;
      ++j;
      isInRun = false;
      continue;
    }
    if (!isInRun) {
      runs.emplace_back();
      isInRun = true;
    }
    if (j == after.size() || (i < before.size() && common[i + 1][j] >= common[i][j + 1])) {
      runs.back().removed.push_back(before[i++]);
    } else {
      runs.back().added.push_back(after[j++]);
    }
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
  return removed.empty() && added.empty() && changed.empty() && package.empty() && configuration.empty() &&
         program.empty();
}

Comparison Compare(const Inspection& before, const Inspection& after) {
  Comparison comparison = {};
  comparison.before = &before;
  comparison.after = &after;
  CompareFileLists(before, after, &comparison);
  comparison.package = ComparePackages(before, after);
  comparison.configuration = CompareLines(ConfigurationLines(before), ConfigurationLines(after));
  comparison.program = ComparePrograms(before.installer, after.installer);
  return comparison;
}

}  // namespace kwa

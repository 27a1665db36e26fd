#include "installer/comparison.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <set>
#include <sstream>
#include <utility>

#include "base/ascii_text.h"
#include "installer/preview.h"

namespace kwa {
namespace {

bool HaveSameSigners(const std::vector<Signature>& before, const std::vector<Signature>& after) {
  return std::equal(before.begin(), before.end(), after.begin(), after.end(),
                    [](const Signature& left, const Signature& right) {
                      return left.signer == right.signer && left.certificate == right.certificate &&
                             left.check.has_value() == right.check.has_value();
                    });
}

bool AreSame(const InspectedFile& before, const InspectedFile& after) {
  return before.item.archive == after.item.archive && before.item.name == after.item.name &&
         before.sha256 == after.sha256 && before.item.padding.Text() == after.item.padding.Text() &&
         before.trust.isCovered == after.trust.isCovered &&
         HaveSameSigners(before.trust.signatures, after.trust.signatures);
}

void CompareFiles(const Inspection& before, const Inspection& after, Comparison* comparison) {
  // By the name under which the installer writes them: for Windows, upper and lower case are the same. A damaged file
  // may have a name more than once.
  std::multimap<std::string, const InspectedFile*> rest;
  for (const InspectedFile& file : before.files) {
    rest.emplace(UpperCase(file.item.name), &file);
  }
  std::vector<const InspectedFile*> kept;
  for (const InspectedFile& file : after.files) {
    const auto [found, end] = rest.equal_range(UpperCase(file.item.name));
    if (found == end) {
      comparison->added.push_back(&file);
      continue;
    }
    if (!AreSame(*found->second, file)) {
      comparison->changed.push_back({found->second, &file});
    }
    kept.push_back(found->second);
    rest.erase(found);
  }
  for (const auto& [name, file] : rest) {
    comparison->removed.push_back(file);
  }
  comparison->isOrderChanged = !std::is_sorted(kept.begin(), kept.end());  // they are elements of one vector
}

// The texts of one list that another does not have.
std::vector<std::string> Missing(const std::vector<std::string>& list, const std::vector<std::string>& other) {
  const std::set<std::string> known(other.begin(), other.end());
  std::vector<std::string> missing;
  std::copy_if(list.begin(), list.end(), std::back_inserter(missing),
               [&known](const std::string& text) { return known.count(text) == 0; });
  return missing;
}

void ComparePackages(const DriverPackage& before, const DriverPackage& after, Comparison* comparison) {
  comparison->isPackageChanged = before.inf.name != after.inf.name ||
                                 before.identity.version.text != after.identity.version.text ||
                                 before.identity.displayName.text != after.identity.displayName.text;
  const std::optional<DriverVersion> oldVersion = ReadDriverVersion(before.identity.version.text);
  const std::optional<DriverVersion> newVersion = ReadDriverVersion(after.identity.version.text);
  if (oldVersion && newVersion) {
    comparison->versionOrder = *newVersion < *oldVersion   ? VersionOrder::Older
                               : *oldVersion < *newVersion ? VersionOrder::Newer
                                                           : VersionOrder::Same;
  }
  for (std::size_t i = 0; i < std::size(kInfPlatforms); ++i) {
    const PlatformInf old = before.platforms.empty() ? PlatformInf() : before.platforms[i];
    const PlatformInf current = after.platforms.empty() ? PlatformInf() : after.platforms[i];
    ChangedHardware changed = {kInfPlatforms[i], Missing(old.hardwareIds, current.hardwareIds),
                               Missing(current.hardwareIds, old.hardwareIds)};
    if (!changed.removed.empty() || !changed.added.empty()) {
      comparison->hardware.push_back(std::move(changed));
    }
    comparison->isPackageChanged = comparison->isPackageChanged || old.windowsVersions != current.windowsVersions;
  }
}

std::vector<std::string> ComparePrograms(const Program& before, const Program& after) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < std::max(before.parts.size(), after.parts.size()); ++i) {
    const bool isInBoth = i < before.parts.size() && i < after.parts.size();
    if (!isInBoth || !(before.parts[i] == after.parts[i])) {
      names.push_back((i < after.parts.size() ? after : before).parts[i].name);
    }
  }
  return names;
}

std::vector<std::string> ConfigurationLines(const DriverPackage& package) {
  std::istringstream document(PreviewDpinstConfig(package.identity, false));
  std::vector<std::string> lines;
  for (std::string line; std::getline(document, line);) {
    lines.push_back(line.substr(0, line.find('\r')));
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
  // Each line that is the same ends a run, which may be empty.
  std::vector<ChangedLines> runs(1);
  for (std::size_t i = 0, j = 0; i < before.size() || j < after.size();) {
    if (i < before.size() && j < after.size() && before[i] == after[j]) {
      runs.emplace_back();
      ++i;
      ++j;
    } else if (j == after.size() || (i < before.size() && common[i + 1][j] >= common[i][j + 1])) {
      runs.back().removed.push_back(before[i++]);
    } else {
      runs.back().added.push_back(after[j++]);
    }
  }
  const auto isEmpty = [](const ChangedLines& run) { return run.removed.empty() && run.added.empty(); };
  runs.erase(std::remove_if(runs.begin(), runs.end(), isEmpty), runs.end());
  return runs;
}

}  // namespace

bool Comparison::IsAlike() const {
  return removed.empty() && added.empty() && changed.empty() && !isOrderChanged && !isPackageChanged &&
         hardware.empty() && !areSignersChanged && !areTextsChanged && programParts.empty() && configuration.empty();
}

Comparison Compare(const Inspection& before, const Inspection& after) {
  Comparison comparison = {};
  comparison.before = &before;
  comparison.after = &after;
  CompareFiles(before, after, &comparison);
  ComparePackages(PackageOf(before), PackageOf(after), &comparison);
  comparison.areSignersChanged = !HaveSameSigners(before.signatures, after.signatures);
  comparison.areTextsChanged = before.configuration != after.configuration;
  comparison.programParts = ComparePrograms(before.program, after.program);
  comparison.configuration = CompareLines(ConfigurationLines(PackageOf(before)), ConfigurationLines(PackageOf(after)));
  return comparison;
}

}  // namespace kwa

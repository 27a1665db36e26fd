#include "installer/comparison.h"

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

#include "base/ascii_text.h"
#include "installer/preview.h"

namespace kwa {
namespace {

bool HaveSameSigners(const std::vector<Signature>& before, const std::vector<Signature>& after) {
  return std::equal(before.begin(), before.end(), after.begin(), after.end(),
                    [](const Signature& left, const Signature& right) {
                      return left.signer == right.signer && left.check.has_value() == right.check.has_value();
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
  std::map<std::pair<std::string, int>, const InspectedFile*> rest;
  std::map<std::string, int> times;
  for (const InspectedFile& file : before.files) {
    const std::string name = UpperCase(file.item.name);
    rest[{name, times[name]++}] = &file;
  }
  times.clear();
  std::vector<const InspectedFile*> kept;
  for (const InspectedFile& file : after.files) {
    const std::string name = UpperCase(file.item.name);
    const auto found = rest.find({name, times[name]++});
    if (found == rest.end()) {
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

bool HaveSamePackage(const std::optional<DriverPackage>& before, const std::optional<DriverPackage>& after) {
  if (!before || !after) {
    return before.has_value() == after.has_value();
  }
  return before->inf.name == after->inf.name && before->identity.version.text == after->identity.version.text &&
         before->identity.displayName.text == after->identity.displayName.text;
}

std::vector<std::string> ComparePrograms(const Program& before, const Program& after) {
  std::vector<std::string> names;
  for (std::size_t i = 0; i < std::max(before.parts.size(), after.parts.size()); ++i) {
    const bool isInBoth = i < before.parts.size() && i < after.parts.size();
    if (!isInBoth || !(before.parts[i] == after.parts[i])) {
      names.push_back(i < after.parts.size() ? after.parts[i].name : before.parts[i].name);
    }
  }
  return names;
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

}  // namespace

bool Comparison::IsAlike() const {
  return removed.empty() && added.empty() && changed.empty() && !isOrderChanged && !isPackageChanged &&
         !areSignersChanged && !areTextsChanged && programParts.empty() && configuration.empty();
}

Comparison Compare(const Inspection& before, const Inspection& after) {
  Comparison comparison = {};
  comparison.before = &before;
  comparison.after = &after;
  CompareFiles(before, after, &comparison);
  comparison.isPackageChanged = !HaveSamePackage(before.package, after.package);
  comparison.areSignersChanged = !HaveSameSigners(before.signatures, after.signatures);
  comparison.areTextsChanged = before.configuration != after.configuration;
  comparison.programParts = ComparePrograms(before.program, after.program);
  comparison.configuration = CompareLines(ConfigurationLines(before), ConfigurationLines(after));
  return comparison;
}

}  // namespace kwa

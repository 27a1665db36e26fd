#include "base/finding.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace kwa {
namespace {

constexpr std::size_t kMaxFindings = 1000;

}  // namespace

void Findings::Add(Finding finding) {
  if (list.size() < kMaxFindings) {
    list.push_back(std::move(finding));
    return;
  }
  if (list.size() == kMaxFindings) {
    list.push_back({Severity::Warning, "", "there are more findings than these 1000", "more-findings"});
  }
  if (finding.severity == Severity::Error) {
    list.back().severity = Severity::Error;
  }
}

void Findings::AddError(std::string where, std::string what, std::string code) {
  Add({Severity::Error, std::move(where), std::move(what), std::move(code)});
}

void Findings::AddWarning(std::string where, std::string what, std::string code) {
  Add({Severity::Warning, std::move(where), std::move(what), std::move(code)});
}

void Findings::AddAll(const Findings& others) {
  for (const Finding& finding : others) {
    Add(finding);
  }
}

bool Findings::HasError() const {
  return std::any_of(list.begin(), list.end(),
                     [](const Finding& finding) { return finding.severity == Severity::Error; });
}

}  // namespace kwa

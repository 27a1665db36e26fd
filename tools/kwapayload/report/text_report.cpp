#include "report/text_report.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <string_view>
#include <utility>

#include "report/escaped_text.h"
#include "report/words.h"

namespace kwa {
namespace {

std::string OrNone(const std::string& text) {
  return text.empty() ? "none" : text;
}

std::string ChangesText(const std::vector<Change>& changes) {
  std::vector<std::string> texts;
  for (const Change& change : changes) {
    texts.push_back(std::string(change.what) + " " + OrNone(change.before) + " -> " + OrNone(change.after));
  }
  return Joined(texts, "; ");
}

// Each line after the same beginning.
std::string LinesText(const char* beginning, const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) {
    text += beginning + Escaped(line) + '\n';
  }
  return text;
}

std::string FilesText(const char* what, const std::vector<const InspectedFile*>& files) {
  std::string text;
  for (const InspectedFile* const file : files) {
    text += what + Escaped(file->item.name) + ": archive " + file->item.archive + ", " +
            std::to_string(file->item.body.Size()) + " bytes, " + KindText(file->kind) +
            (file->version ? ", version " + VersionText(file->version) : "") + '\n';
  }
  return text;
}

std::vector<std::string_view> SortedLines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1);
    lines.push_back(text.substr(0, end + 1));
    text.remove_prefix(end + 1);
  }
  std::sort(lines.begin(), lines.end());
  return lines;
}

// What kind of change a content has that is no change of kind, size or version.
std::string ContentText(const InspectedFile& before, const InspectedFile& after) {
  constexpr std::size_t kMaxText = 1024 * 1024;
  if (!before.kind.text || !after.kind.text || before.item.body.Size() > kMaxText) {
    return "content alone";
  }
  const std::vector<std::string_view> old = SortedLines(before.item.body.Text());
  const std::vector<std::string_view> current = SortedLines(after.item.body.Text());
  std::vector<std::string_view> common;
  std::set_intersection(old.begin(), old.end(), current.begin(), current.end(), std::back_inserter(common));
  const std::size_t removed = old.size() - common.size();
  const std::size_t added = current.size() - common.size();
  return removed + added == 0 ? "the same lines in another order"
                              : "text, lines removed: " + std::to_string(removed) + ", added: " + std::to_string(added);
}

std::string ChangedFileText(const ChangedFile& file) {
  const std::vector<Change> changes = FileChanges(file);
  // Nobody reads digests.
  const bool isContentAlone = changes.front().what == std::string_view("content");
  return "changed: " + Escaped(file.after->item.name) + ": " +
         (isContentAlone ? ContentText(*file.before, *file.after) : ChangesText(changes)) + '\n';
}

std::string InstallerText(const Comparison& comparison) {
  std::string text;
  if (!comparison.programParts.empty()) {
    text += "program: not the same in " + Escaped(Joined(comparison.programParts)) + '\n';
  }
  if (comparison.areTextsChanged) {
    text += "texts: not the same wizard texts\n";
  }
  const bool areTextsKnown = comparison.before->hasKnownTexts && comparison.after->hasKnownTexts;
  if (!areTextsKnown && (comparison.areTextsChanged || !comparison.configuration.empty())) {
    text += "dpinst.xml: not all wizard texts are those of this tool; what is said of the file is a guess\n";
  }
  if (comparison.areSignersChanged) {
    const Change signature = SignatureChange(comparison);
    text += "signature: " + OrNone(signature.before) + " -> " + OrNone(signature.after) + '\n';
  }
  return text;
}

std::string HardwareText(const Comparison& comparison) {
  std::string text;
  for (const ChangedHardware& ids : comparison.hardware) {
    text += "hardware IDs of " + PlatformName(ids.platform) + ":\n" + LinesText("  -", ids.removed) +
            LinesText("  +", ids.added);
  }
  return text;
}

std::string ConfigurationText(const Comparison& comparison) {
  // Most changes are the same in the elements of all languages.
  std::vector<std::string> runs;
  std::map<std::string, int> times;
  for (const ChangedLines& lines : comparison.configuration) {
    runs.push_back(LinesText("  -", lines.removed) + LinesText("  +", lines.added));
    ++times[runs.back()];
  }
  std::string text;
  for (const std::string& run : runs) {
    if (const int count = std::exchange(times[run], 0); count != 0) {
      text += "dpinst.xml" + (count == 1 ? "" : ", " + std::to_string(count) + " times") + ":\n" + run;
    }
  }
  return text;
}

}  // namespace

std::string CompareText(const Comparison& comparison) {
  std::string text =
      InstallerText(comparison) + FilesText("removed: ", comparison.removed) + FilesText("added: ", comparison.added);
  for (const ChangedFile& file : comparison.changed) {
    text += ChangedFileText(file);
  }
  if (comparison.isOrderChanged) {
    text += "order: the files have another order\n";
  }
  if (comparison.isPackageChanged) {
    text += "package: " + ChangesText(PackageChanges(comparison)) + '\n';
  }
  if (!comparison.IsAlike() && comparison.versionOrder == VersionOrder::Same) {
    text += "driver version: the same in both; Setup does not take the new package for a newer one\n";
  } else if (comparison.versionOrder == VersionOrder::Older) {
    text += "driver version: OLDER than before; Setup does not take the new package for a newer one\n";
  }
  return text + HardwareText(comparison) + ConfigurationText(comparison);
}

std::string VerifyText(const std::string& file, const Verification& verification) {
  std::string text;
  for (const Signature& signature : verification.signatures) {
    text += Escaped(file) + ": signed by " + SignatureText(signature) + '\n';
  }
  for (const Finding& finding : verification.findings) {
    text += std::string(SeverityWord(finding.severity)) + ": " + Escaped(finding.where) +
            (finding.where.empty() ? "" : ": ") + Escaped(finding.what) + " [" + finding.code + "]\n";
  }
  return text + (verification.findings.Empty() ? Escaped(file) + ": in order\n" : "");
}

}  // namespace kwa

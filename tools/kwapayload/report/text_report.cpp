#include "report/text_report.h"

#include <map>
#include <string_view>
#include <utility>

#include "report/escaped_text.h"
#include "report/words.h"

namespace kwa {
namespace {

std::string SignersOrNone(const std::vector<Signature>& signatures) {
  return signatures.empty() ? "none" : SignersText(signatures);
}

std::string ChangesText(const std::vector<Change>& changes) {
  const auto shown = [](const std::string& text) { return text.empty() ? "none" : text; };
  std::vector<std::string> texts;
  for (const Change& change : changes) {
    texts.push_back(std::string(change.what) + " " + shown(change.before) + " -> " + shown(change.after));
  }
  return Joined(texts, "; ");
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

std::string ChangedFileText(const ChangedFile& file) {
  const std::vector<Change> changes = FileChanges(file);
  // Nobody reads digests.
  const bool isContentAlone = changes.front().what == std::string_view("content");
  return "changed: " + Escaped(file.after->item.name) + ": " +
         (isContentAlone ? "content alone" : ChangesText(changes)) + '\n';
}

std::string InstallerText(const Comparison& comparison) {
  std::string text;
  if (!comparison.programParts.empty()) {
    text += "program: not the same in " + Escaped(Joined(comparison.programParts)) + '\n';
  }
  if (comparison.areTextsChanged) {
    text += "texts: not the same wizard texts; what is said of dpinst.xml is a guess\n";
  }
  if (comparison.areSignersChanged) {
    text += "signature: " + SignersOrNone(comparison.before->signatures) + " -> " +
            SignersOrNone(comparison.after->signatures) + '\n';
  }
  return text;
}

std::string ConfigurationText(const Comparison& comparison) {
  // Most changes are the same in the elements of all languages.
  std::map<ChangedLines, int> times;
  for (const ChangedLines& lines : comparison.configuration) {
    ++times[lines];
  }
  std::string text;
  for (const ChangedLines& lines : comparison.configuration) {
    const int count = std::exchange(times[lines], 0);
    if (count == 0) {
      continue;
    }
    text += "dpinst.xml" + (count == 1 ? "" : ", " + std::to_string(count) + " times") + ":\n";
    for (const std::string& line : lines.removed) {
      text += "  -" + Escaped(line) + '\n';
    }
    for (const std::string& line : lines.added) {
      text += "  +" + Escaped(line) + '\n';
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
  return text + ConfigurationText(comparison);
}

std::string VerifyText(const std::string& file, const Findings& findings) {
  std::string text;
  for (const Finding& finding : findings) {
    text += std::string(SeverityWord(finding.severity)) + ": " + Escaped(finding.where) +
            (finding.where.empty() ? "" : ": ") + Escaped(finding.what) + '\n';
  }
  return findings.Empty() ? Escaped(file) + ": in order\n" : text;
}

}  // namespace kwa

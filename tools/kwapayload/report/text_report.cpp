#include "report/text_report.h"

#include <map>
#include <utility>

#include "report/escaped_text.h"
#include "report/words.h"

namespace kwa {
namespace {

std::string ChangeText(const char* what, const std::string& before, const std::string& after) {
  const auto shown = [](const std::string& text) { return text.empty() ? "none" : text; };
  return std::string(what) + " " + shown(before) + " -> " + shown(after);
}

std::string FilesText(const char* what, const std::vector<const InspectedFile*>& files) {
  std::string text;
  for (const InspectedFile* const file : files) {
    text += what + FieldText(FileField::Name, *file) + ": archive " + file->item.archive + ", " +
            FieldText(FileField::Size, *file) + " bytes, " + KindText(file->kind) +
            (file->version ? ", version " + VersionText(file->version) : "") + '\n';
  }
  return text;
}

std::string ChangedFileText(const ChangedFile& file) {
  std::string changes;
  for (const FileField field : file.fields) {
    changes += changes.empty() ? "" : "; ";
    // Nobody reads digests.
    changes += field == FileField::Content
                   ? "content alone"
                   : ChangeText(FieldName(field), FieldText(field, *file.before), FieldText(field, *file.after));
  }
  return "changed: " + FieldText(FileField::Name, *file.after) + ": " + changes + '\n';
}

std::string PackageText(const Comparison& comparison) {
  std::string changes;
  for (const PackageField field : comparison.package) {
    changes += (changes.empty() ? "package: " : "; ") +
               ChangeText(FieldName(field), FieldText(field, *comparison.before), FieldText(field, *comparison.after));
  }
  return changes + (changes.empty() ? "" : "\n");
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
  std::string text = FilesText("removed: ", comparison.removed) + FilesText("added: ", comparison.added);
  for (const ChangedFile& file : comparison.changed) {
    text += ChangedFileText(file);
  }
  text += PackageText(comparison) + ConfigurationText(comparison);
  if (!comparison.program.empty()) {
    text += "program: not the same in " + Escaped(Joined(comparison.program)) + '\n';
  }
  return text;
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

#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "files/mapped_file.h"
#include "installer/comparison.h"
#include "installer/installer_file.h"

namespace kwa {
namespace {

using nlohmann::ordered_json;

struct CompareOptions {
  std::filesystem::path before;
  std::filesystem::path after;
  bool isJson = false;
};

std::string ChangesText(const std::vector<Change>& changes) {
  const auto shown = [](const std::string& text) { return text.empty() ? "none" : text; };
  std::string text;
  for (const Change& change : changes) {
    text += (text.empty() ? "" : "; ") + change.what;
    // Nobody reads digests.
    text += change.what == "content" ? " alone" : " " + shown(change.before) + " -> " + shown(change.after);
  }
  return text;
}

void PrintFiles(const char* what, const std::vector<ListedFile>& files) {
  for (const ListedFile& file : files) {
    std::cout << what << file.name << ": archive " << file.archive << ", " << file.size << " bytes, " << file.kind
              << (file.version.empty() ? "" : ", version " + file.version) << '\n';
  }
}

void PrintLines(const Comparison& comparison) {
  PrintFiles("removed: ", comparison.removed);
  PrintFiles("added: ", comparison.added);
  for (const ChangedFile& file : comparison.changed) {
    std::cout << "changed: " << file.name << ": " << ChangesText(file.changes) << '\n';
  }
  if (!comparison.identity.empty()) {
    std::cout << "package: " << ChangesText(comparison.identity) << '\n';
  }
  // Most lines stand in the part of every language alike.
  std::map<std::vector<std::string>, int> times;
  for (const std::vector<std::string>& lines : comparison.configuration) {
    ++times[lines];
  }
  for (const std::vector<std::string>& lines : comparison.configuration) {
    if (const int count = times[lines]; count > 0) {
      std::cout << "dpinst.xml" << (count == 1 ? "" : ", " + std::to_string(count) + " times") << ":\n";
      for (const std::string& line : lines) {
        std::cout << "  " << line << '\n';
      }
      times[lines] = 0;
    }
  }
  for (const std::string& part : comparison.program) {
    std::cout << (&part == &comparison.program.front() ? "program: not the same in " : ", ") << part;
  }
  std::cout << (comparison.program.empty() ? "" : "\n");
}

ordered_json FilesJson(const std::vector<ListedFile>& files) {
  ordered_json list = ordered_json::array();
  for (const ListedFile& file : files) {
    list.push_back({{"archive", file.archive},
                    {"name", file.name},
                    {"size", file.size},
                    {"kind", file.kind},
                    {"version", file.version},
                    {"sha256", file.sha256}});
  }
  return list;
}

ordered_json ChangesJson(const std::vector<Change>& changes) {
  ordered_json list = ordered_json::array();
  for (const Change& change : changes) {
    list.push_back({{"what", change.what}, {"before", change.before}, {"after", change.after}});
  }
  return list;
}

void PrintJson(const Comparison& comparison) {
  ordered_json changed = ordered_json::array();
  for (const ChangedFile& file : comparison.changed) {
    changed.push_back({{"name", file.name}, {"changes", ChangesJson(file.changes)}});
  }
  const ordered_json document = {{"alike", comparison.IsAlike()},
                                 {"removed", FilesJson(comparison.removed)},
                                 {"added", FilesJson(comparison.added)},
                                 {"changed", changed},
                                 {"package", ChangesJson(comparison.identity)},
                                 {"configuration", comparison.configuration},
                                 {"program", comparison.program}};
  std::cout << document.dump(2) << '\n';
}

void RunCompare(const CompareOptions& options) {
  const MappedFile fileBefore(options.before);
  const MappedFile fileAfter(options.after);
  const InstallerFile before = ReadSoundInstallerFile(fileBefore.Bytes(), options.before);
  const InstallerFile after = ReadSoundInstallerFile(fileAfter.Bytes(), options.after);
  const Comparison comparison = CompareInstallers(before, after);
  options.isJson ? PrintJson(comparison) : PrintLines(comparison);
  if (!comparison.IsAlike()) {
    throw CLI::RuntimeError(EXIT_FAILURE);
  }
}

}  // namespace

void AddCompareCommand(CLI::App& app) {
  const auto options = std::make_shared<CompareOptions>();
  CLI::App* const compare = app.add_subcommand("compare", "Tells what a release has differently from another");
  compare->add_option("OLD", options->before, "Installer, signed or not, or payload archive")->required();
  compare->add_option("NEW", options->after, "The same")->required();
  compare->add_flag("--json", options->isJson, "Writes JSON");
  compare->footer(
      "Prints nothing but differences: of files, package, dpinst.xml (as on Windows Vista and later), and of the "
      "program\n"
      "around the payload, signature apart.\n"
      "Exit status: 0 alike, 1 different, 2 misuse, or a file that cannot be read.\n"
      "\n"
      "Example:\n"
      "  kwapayload compare kwa_installer-1.0.exe kwa_installer-1.1.exe");
  compare->callback([options] { RunCompare(*options); });
}

}  // namespace kwa

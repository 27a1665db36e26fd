#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>

#include "files/installer_input.h"
#include "report/json_report.h"
#include "report/text_report.h"

namespace kwa {
namespace {

struct CompareOptions {
  std::filesystem::path before;
  std::filesystem::path after;
  bool asJson = false;
};

int RunCompare(const CompareOptions& options) {
  const InstallerInput fileBefore(options.before);
  const InstallerInput fileAfter(options.after);
  const Inspection before = Inspect(fileBefore.SoundFile());
  const Inspection after = Inspect(fileAfter.SoundFile());
  const Comparison comparison = Compare(before, after);
  std::cout << (options.asJson ? CompareJson(comparison) : CompareText(comparison));
  return comparison.IsAlike() ? kExitInOrder : kExitFindings;
}

}  // namespace

Command AddCompareCommand(CLI::App& program) {
  const auto options = std::make_shared<CompareOptions>();
  CLI::App* const compare = program.add_subcommand("compare", "Shows what differs between two releases");
  compare->add_option("OLD", options->before, "Installer, signed or not, or payload archive")->required();
  compare->add_option("NEW", options->after, "The same")->required();
  compare->add_flag("--json", options->asJson, "Writes JSON");
  compare->footer(
      "Prints nothing but differences: of files, package, dpinst.xml (as on Windows Vista\n"
      "and later), and of the program around the payload without its signature.\n"
      "Exit status: 0 alike, 1 different, 2 could not be compared, or misuse.\n"
      "\n"
      "Example:\n"
      "  kwapayload compare kwa_installer-1.0.exe kwa_installer-1.1.exe");
  return {compare, [options] { return RunCompare(*options); }};
}

}  // namespace kwa

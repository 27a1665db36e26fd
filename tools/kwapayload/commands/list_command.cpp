#include "commands/commands.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "files/installer_input.h"
#include "report/bill_of_materials.h"
#include "report/json_report.h"
#include "report/list_report.h"

namespace kwa {
namespace {

struct ListOptions {
  std::filesystem::path file;
  bool asJson = false;
  bool asCycloneDx = false;
};

// The columns of the terminal on standard output; 0 where it is no terminal.
std::size_t TerminalWidth() {
  winsize size = {};
  return ::isatty(STDOUT_FILENO) == 1 && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
}

int RunList(const ListOptions& options) {
  const InstallerInput input(options.file);
  const Inspection inspection = Inspect(input.SoundInstaller());
  const std::string name = options.file.filename().string();
  if (options.asCycloneDx) {
    std::cout << BillOfMaterials(name, inspection);
  } else {
    std::cout << (options.asJson ? ListJson(name, inspection) : ListText(name, inspection, TerminalWidth()));
  }
  return kExitInOrder;
}

}  // namespace

Command AddListCommand(CLI::App& program) {
  const auto options = std::make_shared<ListOptions>();
  CLI::App* const list = program.add_subcommand("list", "Shows what an installer or a payload archive holds");
  list->add_option("FILE", options->file, kFileHelp)->required();
  CLI::Option* const json = list->add_flag("--json", options->asJson, "Writes JSON");
  list->add_flag("--cyclonedx", options->asCycloneDx, "Writes a bill of materials in CycloneDX 1.6 (JSON)")
      ->excludes(json);
  list->footer(
      "CATALOG: whether the driver package's catalog covers the file.\n"
      "A signature is BROKEN where it does not fit what it signs or its certificate; who may\n"
      "be trusted is not judged. Bytes of a name that are not printable show as \\xHH.\n"
      "--json has more: places and digests.\n"
      "\n"
      "Example:\n"
      "  kwapayload list kwa_installer.exe");
  return {list, [options] { return RunList(*options); }};
}

}  // namespace kwa

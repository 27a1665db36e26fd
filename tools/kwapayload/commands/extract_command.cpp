#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>

#include "files/extraction.h"
#include "files/installer_input.h"

namespace kwa {
namespace {

struct ExtractOptions {
  std::filesystem::path file;
  ExtractionRequest request;
};

int RunExtract(const ExtractOptions& options) {
  const InstallerInput input(options.file);
  ExtractFiles(options.file, input.SoundFile(), options.request);
  return kExitInOrder;
}

}  // namespace

Command AddExtractCommand(CLI::App& program) {
  const auto options = std::make_shared<ExtractOptions>();
  CLI::App* const extract =
      program.add_subcommand("extract", "Writes the files of an installer or archive into a folder");
  extract->add_option("FILE", options->file, "Installer, signed or not, or payload archive")->required();
  extract->add_option("FOLDER", options->request.folder, "Folder for the files; created when it is missing")
      ->required();
  CLI::Option* const names =
      extract->add_option("NAME", options->request.names, "Files to be written, upper or lower case (default: all)");
  extract
      ->add_flag("--payload", options->request.asPayload,
                 "Writes FOLDER/a, FOLDER/b and FOLDER/contents.json, from which a release is built again")
      ->excludes(names);
  extract->add_flag("--force", options->request.mayOverwrite, "Overwrites files that exist");
  extract->footer(
      "Refuses names that are not bare file names: nothing is written outside FOLDER.\n"
      "\n"
      "Example:\n"
      "  kwapayload extract kwa_installer.exe files marlin_usb.inf marlin_usb.cat");
  return {extract, [options] { return RunExtract(*options); }};
}

}  // namespace kwa

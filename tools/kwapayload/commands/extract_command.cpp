#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>

#include "files/mapped_file.h"
#include "files/extraction.h"
#include "installer/installer_file.h"

namespace kwa {
namespace {

struct ExtractOptions {
  std::filesystem::path file;
  ExtractionRequest request;
};

void RunExtract(const ExtractOptions& options) {
  const MappedFile file(options.file);
  const InstallerFile installer = ReadSoundInstallerFile(file.Bytes(), options.file);
  ExtractFiles(options.file, installer, options.request);
}

}  // namespace

void AddExtractCommand(CLI::App& app) {
  const auto options = std::make_shared<ExtractOptions>();
  CLI::App* const extract = app.add_subcommand("extract", "Writes the files of an installer or archive into a folder");
  extract->add_option("FILE", options->file, "Installer, signed or not, or payload archive")->required();
  extract->add_option("FOLDER", options->request.folder, "Folder for the files; created when it is missing")
      ->required();
  extract->add_option("NAME", options->request.names, "Files to be written, all without any");
  extract->add_flag("--force", options->request.mayOverwrite, "Overwrites files that are there");
  extract->footer(
      "Refuses names that are no bare file names: nothing is written outside FOLDER.\n"
      "\n"
      "Example:\n"
      "  kwapayload extract kwa_installer.exe files marlin_usb.inf marlin_usb.cat");
  extract->callback([options] { RunExtract(*options); });
}

}  // namespace kwa

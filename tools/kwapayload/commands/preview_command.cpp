#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "files/installer_input.h"
#include "installer/preview.h"
#include "package/driver_package.h"
#include "report/escaped_text.h"

namespace kwa {
namespace {

struct PreviewOptions {
  std::filesystem::path file;
  std::string windows;
};

int RunPreview(const PreviewOptions& options) {
  const InstallerInput input(options.file);
  const InstallerFile& installer = input.SoundInstaller();
  const std::optional<DriverPackage> package = ReadDriverPackage(installer.items);
  // Without an INF, the installer writes its configuration with nothing about the package.
  const PackageIdentity identity = package ? package->identity : PackageIdentity();
  std::cout << PreviewDpinstConfig(identity, options.windows == "xp");
  std::string doubt;
  if (!identity.certainty) {
    doubt = std::string(package->inf.name) + " " + identity.certainty.error().what;
  } else if (!HasKnownTexts(installer)) {
    doubt = "has other texts than this tool";
  }
  if (!doubt.empty()) {
    std::cerr << "kwapayload: " << Escaped(options.file.string()) << ": " << Escaped(doubt)
              << ": what is printed is a guess\n";
    return kExitFindings;
  }
  return kExitInOrder;
}

}  // namespace

Command AddPreviewCommand(CLI::App& program) {
  const auto options = std::make_shared<PreviewOptions>();
  CLI::App* const preview = program.add_subcommand("preview", "Prints the dpinst.xml that an installer will write");
  preview->add_option("FILE", options->file, kFileHelp)->required();
  preview
      ->add_option("--windows", options->windows, "The Windows that it will run on: vista (or later) or xp (or 2000)")
      ->check(CLI::IsMember({"vista", "xp"}))
      ->default_val("vista");
  preview->footer(
      "Byte for byte what the installer writes, line ends of Windows included. Where that\n"
      "cannot be known, prints what is likely, says so on the error stream and exits with 1:\n"
      "the installer has other wizard texts than this program, or the INF's version or\n"
      "display name is not plain text for every Windows.\n"
      "\n"
      "Example:\n"
      "  kwapayload preview kwa_installer.exe --windows xp > dpinst.xml");
  return {preview, [options] { return RunPreview(*options); }};
}

}  // namespace kwa

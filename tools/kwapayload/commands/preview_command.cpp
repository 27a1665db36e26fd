#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

#include "report/escaped_text.h"
#include "files/mapped_file.h"
#include "files/tool_failure.h"
#include "package/package_identity.h"
#include "installer/installer_file.h"
#include "installer/preview.h"

namespace kwa {
namespace {

struct PreviewOptions {
  std::filesystem::path file;
  std::string windows;
};

void RunPreview(const PreviewOptions& options) {
  const MappedFile file(options.file);
  const InstallerFile installer = ReadSoundInstallerFile(file.Bytes(), options.file);
  const ArchiveItem* const inf = FindInf(installer);
  // Without an INF the installer writes its configuration all the same, with nothing in it of the package.
  const PackageIdentity identity = inf != nullptr ? ReadHostPackageIdentity(InfText(inf->body)) : PackageIdentity();
  std::cout << PreviewDpinstConfig(identity, options.windows == "xp");
  if (inf != nullptr && !identity.fault.empty()) {
    throw ToolFailure(options.file, EscapedText(inf->name) + " " + identity.fault + ": what is printed is a guess");
  }
}

}  // namespace

void AddPreviewCommand(CLI::App& app) {
  const auto options = std::make_shared<PreviewOptions>();
  CLI::App* const preview = app.add_subcommand("preview", "Prints the dpinst.xml that an installer will write");
  preview->add_option("FILE", options->file, "Installer, signed or not, or the payload archive with the INF")
      ->required();
  preview
      ->add_option("--windows", options->windows, "The Windows that it will run on: vista (or later) or xp (or 2000)")
      ->check(CLI::IsMember({"vista", "xp"}))
      ->default_val("vista");
  preview->footer(
      "Byte for byte what the installer writes, line ends of Windows included. Where that cannot be known, as the "
      "INF's\n"
      "version or display name is not plain text for every Windows, prints what is likely, says so on the error "
      "stream\n"
      "and exits with 1.\n"
      "\n"
      "Example:\n"
      "  kwapayload preview kwa_installer.exe --windows xp > dpinst.xml");
  preview->callback([options] { RunPreview(*options); });
}

}  // namespace kwa

#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <memory>

#include "files/mapped_file.h"
#include "report/bill_of_materials.h"
#include "installer/installer_file.h"
#include "installer/listing.h"

namespace kwa {
namespace {

struct ListOptions {
  std::filesystem::path file;
  bool isJson = false;
  bool isCycloneDx = false;
};

void RunList(const ListOptions& options) {
  const MappedFile file(options.file);
  const Listing listing = MakeListing(ReadSoundInstallerFile(file.Bytes(), options.file));
  if (options.isCycloneDx) {
    WriteBillOfMaterials(file.Bytes(), options.file.filename().string(), listing, std::cout);
  } else if (options.isJson) {
    WriteListingJson(listing, std::cout);
  } else {
    WriteListing(listing, std::cout);
  }
}

}  // namespace

void AddListCommand(CLI::App& app) {
  const auto options = std::make_shared<ListOptions>();
  CLI::App* const list = app.add_subcommand("list", "Tells what an installer or a payload archive holds");
  list->add_option("FILE", options->file, "Installer, signed or not, or payload archive")->required();
  CLI::Option* const json = list->add_flag("--json", options->isJson, "Writes JSON");
  list->add_flag("--cyclonedx", options->isCycloneDx, "Writes a bill of materials in CycloneDX 1.6 (JSON)")
      ->excludes(json);
  list->footer(
      "CATALOG says whether the package's catalog covers a file that it must. A signature is BROKEN where it does not "
      "fit\n"
      "what it signs or its certificate; who may be trusted is not judged. Bytes of a name that are not plain text "
      "show\n"
      "as \\xHH. --json has more: places and digests.\n"
      "\n"
      "Example:\n"
      "  kwapayload list kwa_installer.exe");
  list->callback([options] { RunList(*options); });
}

}  // namespace kwa

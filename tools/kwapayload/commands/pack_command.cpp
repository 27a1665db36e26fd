#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "files/contents_input.h"
#include "files/pack_archive.h"
#include "files/payload_folder.h"
#include "files/tool_failure.h"
#include "verify/verification.h"

namespace kwa {
namespace {

struct PackOptions {
  std::filesystem::path folder;
  std::filesystem::path archive;
  std::filesystem::path contents;
  std::string archiveLetter = "-";
};

// Throws ToolFailure when the folder does not hold what the list says.
void CheckContents(const PackOptions& options, const PayloadFolder& files) {
  Findings findings;
  VerifyContents(files.Items(), ReadContentsFile(options.contents), options.archiveLetter[0], &findings);
  std::vector<FileFault> faults;
  bool isListOld = false;
  for (const Finding& finding : findings) {
    faults.push_back({options.folder, finding.where + ": " + finding.what});
    isListOld = isListOld || finding.code != "missing-file";
  }
  if (isListOld) {
    const std::filesystem::path payload = (options.folder / "..").lexically_normal();
    faults.push_back({options.contents, "does not fit; if the files are right, 'kwapayload contents " +
                                            payload.string() + " --output " + (payload / "contents.json").string() +
                                            "' makes a new list"});
  }
  if (!faults.empty()) {
    throw ToolFailure(std::move(faults));
  }
}

int RunPack(const PackOptions& options) {
  const std::filesystem::path parent = options.archive.has_parent_path() ? options.archive.parent_path() : ".";
  std::error_code ignored;
  if (std::filesystem::equivalent(options.folder, parent, ignored)) {
    throw ToolFailure(options.archive, "is in the folder that is to be packed");
  }
  const PayloadFolder files(options.folder, options.archiveLetter[0]);
  if (!options.contents.empty()) {
    CheckContents(options, files);
  }
  PackArchive(files.Items(), options.archive);
  return kExitInOrder;
}

}  // namespace

Command AddPackCommand(CLI::App& program) {
  const auto options = std::make_shared<PackOptions>();
  CLI::App* const pack = program.add_subcommand("pack", "Makes a payload archive from the files of a folder");
  pack->add_option("FOLDER", options->folder, "Folder with the files, and nothing else")->required();
  pack->add_option("ARCHIVE", options->archive, "Archive to be written; appears complete or not at all")->required();
  CLI::Option* const contents = pack->add_option("--contents", options->contents,
                                                 "List of what the archives must hold; refuses any other folder");
  CLI::Option* const letter = pack->add_option("--archive", options->archiveLetter, "Which archive of the list this is")
                                  ->check(CLI::IsMember({"A", "B"}));
  contents->needs(letter);
  letter->needs(contents);
  pack->footer(
      "Example:\n"
      "  kwapayload pack payload/a a.kwap --contents payload/contents.json --archive A");
  return {pack, [options] { return RunPack(*options); }};
}

}  // namespace kwa

#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "base/depfile.h"
#include "report/escaped_text.h"
#include "files/output_file.h"
#include "files/tool_failure.h"
#include "files/pack_archive.h"
#include "payload/payload_contents.h"
#include "files/payload_folder.h"

namespace kwa {
namespace {

struct PackOptions {
  std::filesystem::path folder;
  std::filesystem::path archive;
  std::filesystem::path contents;
  std::string archiveLetter;
  std::filesystem::path depfile;
};

void CheckContents(const PackOptions& options, const std::vector<PayloadFile>& files) {
  const PayloadContents wanted = SelectArchive(ReadPayloadContents(options.contents), options.archiveLetter.front());
  std::vector<Fault> faults = CompareWithContents(options.folder, files, wanted);
  if (!faults.empty()) {
    const std::filesystem::path payload = (options.folder / "..").lexically_normal();
    faults.push_back({ShownPath(options.contents), "does not fit; if the files are right, 'kwapayload contents " +
                                                       ShownPath(payload) + " --output " +
                                                       ShownPath(payload / "contents.json") + "' makes a new list"});
    throw ToolFailure(std::move(faults));
  }
}

void RunPack(const PackOptions& options) {
  std::error_code ignored;
  if (std::filesystem::equivalent(
          options.folder,
          options.archive.parent_path().empty() ? std::filesystem::path(".") : options.archive.parent_path(),
          ignored)) {
    throw ToolFailure(options.archive, "lies in the folder that is to be packed");
  }
  const std::vector<PayloadFile> files = ListPayloadFolder(options.folder);
  if (!options.contents.empty()) {
    CheckContents(options, files);
  }
  OutputFile archive(options.archive);
  PackArchive(files, options.archive, archive);
  archive.Close();
  // The archive last: it stands for a packing that went well in all its parts.
  if (!options.depfile.empty()) {
    std::vector<std::filesystem::path> sources;
    for (const PayloadFile& file : files) {
      sources.push_back(file.path);
    }
    if (!options.contents.empty()) {
      sources.push_back(options.contents);
    }
    OutputFile depfile(options.depfile);
    depfile.Write(MakeDepfile(options.archive, sources));
    depfile.Commit();
  }
  archive.Commit();
}

}  // namespace

void AddPackCommand(CLI::App& app) {
  const auto options = std::make_shared<PackOptions>();
  CLI::App* const pack = app.add_subcommand("pack", "Makes a payload archive from the files of a folder");
  pack->add_option("FOLDER", options->folder, "Folder with the files, and nothing else")->required();
  pack->add_option("ARCHIVE", options->archive, "Archive to be written; appears complete or not at all")->required();
  CLI::Option* const contents = pack->add_option("--contents", options->contents,
                                                 "List of what the archives must hold; refuses any other folder");
  CLI::Option* const letter = pack->add_option("--archive", options->archiveLetter, "Which archive of the list this is")
                                  ->check(CLI::IsMember({"A", "B"}));
  contents->needs(letter);
  letter->needs(contents);
  pack->add_option("--depfile", options->depfile, "Also writes what the archive was made from, in Make's syntax");
  pack->footer(
      "Example:\n"
      "  kwapayload pack payload/a archive_a.kwap --contents payload/contents.json --archive A");
  pack->callback([options] { RunPack(*options); });
}

}  // namespace kwa

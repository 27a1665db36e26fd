#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "base/ascii_text.h"
#include "commands/commands.h"
#include "files/extraction.h"
#include "files/installer_input.h"
#include "files/output_file.h"
#include "files/payload_folder.h"
#include "files/tool_failure.h"
#include "installer/preview.h"
#include "payload/payload_contents.h"
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
  ThrowFaults(std::move(faults));
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

struct ContentsOptions {
  std::filesystem::path folder;
  std::filesystem::path output;
};

// Writes a file, or prints it where there is no path.
void WriteText(const std::filesystem::path& path, const std::string& text) {
  if (path.empty()) {
    std::cout << text;
    return;
  }
  OutputFile output(path);
  output.Write(text);
  output.Commit();
}

int RunContents(const ContentsOptions& options) {
  PayloadContents contents;
  std::vector<FileFault> faults;
  std::map<std::string, std::filesystem::path> known;  // by upper-case name
  for (const char archive : {'A', 'B'}) {
    const std::filesystem::path folder = options.folder / (archive == 'A' ? "a" : "b");
    CollectFaults(&faults, [&] {
      const PayloadFolder files(folder, archive);
      for (const ContentsFile& file : ContentsOf(files.Items())) {
        if (const auto [other, isNew] = known.emplace(UpperCase(file.name), folder / file.name); !isNew) {
          faults.push_back({folder / file.name, "is the same name for Windows as " + other->second.string()});
        }
        contents.push_back(file);
      }
    });
  }
  ThrowFaults(std::move(faults));
  WriteText(options.output, ContentsText(contents));
  return kExitInOrder;
}

struct ExtractOptions {
  std::filesystem::path file;
  ExtractionRequest request;
};

int RunExtract(const ExtractOptions& options) {
  const InstallerInput input(options.file);
  ExtractFiles(options.file, input.SoundFile(), options.request);
  return kExitInOrder;
}

int RunConfiguration(const std::filesystem::path& header) {
  const std::string configuration = KnownConfiguration();
  WriteText(header, header.empty() ? configuration + '\n' : "#define KWA_CONFIGURATION \"" + configuration + "\"\n");
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

Command AddContentsCommand(CLI::App& program) {
  const auto options = std::make_shared<ContentsOptions>();
  CLI::App* const contents = program.add_subcommand("contents", "Writes the list of what a payload folder holds");
  contents->add_option("FOLDER", options->folder, "Folder whose a and b hold the files of the archives")->required();
  contents->add_option("--output", options->output, "The list; appears complete or not at all (default: printed)");
  contents->footer(
      "'pack' and 'verify' take the list as --contents, and a build as FOLDER/contents.json.\n"
      "\n"
      "Example:\n"
      "  kwapayload contents payload --output payload/contents.json");
  return {contents, [options] { return RunContents(*options); }};
}

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

Command AddConfigurationCommand(CLI::App& program) {
  const auto header = std::make_shared<std::filesystem::path>();
  CLI::App* const configuration =
      program.add_subcommand("configuration", "Prints the digest of the wizard texts that this program knows");
  configuration->add_option("--header", *header, "Writes it into a C header for the installer's build instead");
  configuration->footer(
      "The build writes the digest into the installer's version record. 'list', 'preview' and\n"
      "'compare' compare it with their own.\n"
      "\n"
      "Example:\n"
      "  kwapayload configuration");
  return {configuration, [header] { return RunConfiguration(*header); }};
}

}  // namespace kwa

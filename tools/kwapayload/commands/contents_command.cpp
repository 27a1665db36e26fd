#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/ascii_text.h"
#include "content/file_kind.h"
#include "files/output_file.h"
#include "files/payload_folder.h"
#include "files/tool_failure.h"
#include "payload/payload_contents.h"

namespace kwa {
namespace {

struct ContentsOptions {
  std::filesystem::path folder;
  std::filesystem::path output;
};

// The list of what a payload folder holds, or every fault of both its folders.
PayloadContents ListContents(const std::filesystem::path& folder) {
  PayloadContents contents;
  std::vector<FileFault> faults;
  std::map<std::string, std::filesystem::path> known;  // by upper-case name
  for (const char archive : {'A', 'B'}) {
    try {
      const PayloadFolder files(folder / (archive == 'A' ? "a" : "b"), archive);
      for (const ArchiveItem& item : files.Items()) {
        const std::filesystem::path path = files.Path() / item.name;
        if (const auto [other, isNew] = known.emplace(UpperCase(item.name), path); !isNew) {
          faults.push_back({path, "is the same name for Windows as " + other->second.string()});
        }
        contents.push_back({archive, std::string(item.name), static_cast<std::uint32_t>(item.body.Size()),
                            KindText(ReadFileKind(item.body))});
      }
    } catch (const ToolFailure& failure) {
      faults.insert(faults.end(), failure.Faults().begin(), failure.Faults().end());
    }
  }
  if (!faults.empty()) {
    throw ToolFailure(std::move(faults));
  }
  return contents;
}

int RunContents(const ContentsOptions& options) {
  const std::string text = ContentsText(ListContents(options.folder));
  if (options.output.empty()) {
    std::cout << text;
  } else {
    OutputFile output(options.output);
    output.Write(text);
    output.Commit();
  }
  return kExitInOrder;
}

}  // namespace

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

}  // namespace kwa

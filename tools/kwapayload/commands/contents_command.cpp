#include "commands/commands.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "base/ascii_text.h"
#include "report/escaped_text.h"
#include "files/mapped_file.h"
#include "files/output_file.h"
#include "files/tool_failure.h"
#include "content/file_kind.h"
#include "payload/payload_contents.h"
#include "files/payload_folder.h"

namespace kwa {
namespace {

struct ContentsOptions {
  std::filesystem::path folder;
  std::filesystem::path output;
};

// All that both folders hold, or ToolFailure with all that is wrong with both.
PayloadContents ListContents(const std::filesystem::path& folder) {
  PayloadContents contents;
  std::vector<Fault> faults;
  const auto attempt = [&faults](const auto& action) {
    try {
      action();
    } catch (const ToolFailure& failure) {
      faults.insert(faults.end(), failure.Faults().begin(), failure.Faults().end());
    }
  };
  std::map<std::string, std::filesystem::path> known;  // by upper-case name
  const auto add = [&](char archive, std::uint32_t order, const PayloadFile& file) {
    if (const auto [other, isNew] = known.emplace(UpperCase(file.name), file.path); !isNew) {
      throw ToolFailure(file.path, "is to Windows the same name as " + ShownPath(other->second));
    }
    const MappedFile body(file.path);
    contents.push_back({archive, order, file.name, static_cast<std::uint32_t>(file.size), FileKind(body.Bytes())});
  };
  for (const char archive : {'A', 'B'}) {
    attempt([&] {
      std::uint32_t order = 0;
      for (const PayloadFile& file : ListPayloadFolder(folder / (archive == 'A' ? "a" : "b"))) {
        ++order;
        attempt([&] { add(archive, order, file); });
      }
    });
  }
  if (!faults.empty()) {
    throw ToolFailure(std::move(faults));
  }
  return contents;
}

void RunContents(const ContentsOptions& options) {
  const std::string text = ContentsText(ListContents(options.folder));
  if (options.output.empty()) {
    std::cout << text;
    return;
  }
  OutputFile output(options.output);
  output.Write(text);
  output.Commit();
}

}  // namespace

void AddContentsCommand(CLI::App& app) {
  const auto options = std::make_shared<ContentsOptions>();
  CLI::App* const contents = app.add_subcommand("contents", "Writes the list of what a payload folder holds");
  contents->add_option("FOLDER", options->folder, "Folder whose a and b hold what the archives shall")->required();
  contents->add_option("--output", options->output, "The list; appears complete or not at all (default: printed)");
  contents->footer(
      "The list is what 'pack' and 'verify' take as --contents, and a build as FOLDER/contents.json.\n"
      "\n"
      "Example:\n"
      "  kwapayload contents payload --output payload/contents.json");
  contents->callback([options] { RunContents(*options); });
}

}  // namespace kwa

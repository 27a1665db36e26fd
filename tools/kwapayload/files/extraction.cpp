#include "files/extraction.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/ascii_text.h"
#include "files/output_file.h"
#include "files/payload_folder.h"
#include "files/tool_failure.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

struct Target {
  std::filesystem::path path;
  std::string_view bytes;
};

// Longer names fit into an archive, but not into the file systems of this machine.
constexpr std::size_t kMaxFileName = 255;

bool IsWanted(const ArchiveItem& item, const std::vector<std::string>& names) {
  return names.empty() || std::any_of(names.begin(), names.end(),
                                      [&item](const std::string& name) { return IsSameText(item.name, name); });
}

std::filesystem::path FolderOf(const ArchiveItem& item, const ExtractionRequest& request) {
  return request.asPayload ? request.folder / (item.archive == 'A' ? "a" : "b") : request.folder;
}

// What makes it impossible to write a target, as far as it is known before anything is written; "" for nothing.
std::string TargetFault(const std::filesystem::path& target, bool mayOverwrite) {
  std::error_code ignored;
  // A link counts as a file, wherever it points.
  const auto status = std::filesystem::symlink_status(target, ignored);
  if (!std::filesystem::exists(status)) {
    return "";
  }
  if (!mayOverwrite) {
    return "exists; --force overwrites it";
  }
  return std::filesystem::is_directory(status) ? "is a folder" : "";
}

void CheckItem(const ArchiveItem& item, const std::filesystem::path& path, std::set<std::string>* upperNames,
               std::vector<FileFault>* faults) {
  const std::string name(item.name);
  if (const Check check = CheckEntryName(name); !check) {
    faults->push_back({path, name + ": " + check.error().what});
  } else if (name.size() > kMaxFileName) {
    faults->push_back({path, name + ": the name is longer than the 255 bytes that file systems here take"});
  } else if (!upperNames->insert(UpperCase(name)).second) {
    faults->push_back({path, name + " is there twice; for Windows, upper and lower case are the same"});
  }
}

}  // namespace

void ExtractFiles(const std::filesystem::path& path, const InstallerFile& installer, const ExtractionRequest& request) {
  if (request.asPayload && !installer.HoldsBothArchives()) {
    throw ToolFailure(path, "is only one of two archives, so it is no whole payload");
  }
  const std::vector<ArchiveItem>& items = installer.items;
  std::vector<FileFault> faults;
  for (const std::string& name : request.names) {
    if (std::none_of(items.begin(), items.end(), [&](const ArchiveItem& item) { return IsWanted(item, {name}); })) {
      faults.push_back({path, "holds no file " + name});
    }
  }
  std::vector<Target> targets;
  std::set<std::string> upperNames;
  for (const ArchiveItem& item : items) {
    if (IsWanted(item, request.names)) {
      CheckItem(item, path, &upperNames, &faults);
      targets.push_back({FolderOf(item, request) / item.name, item.body.Text()});
    }
  }
  const std::string contents = request.asPayload ? ContentsText(ContentsOf(items)) : "";
  if (request.asPayload) {
    targets.push_back({request.folder / "contents.json", contents});
  }
  for (const Target& target : targets) {
    if (const std::string fault = TargetFault(target.path, request.mayOverwrite); !fault.empty()) {
      faults.push_back({target.path, fault});
    }
  }
  ThrowFaults(std::move(faults));
  for (const Target& target : targets) {
    std::error_code error;
    std::filesystem::create_directories(target.path.parent_path(), error);
    if (error) {
      throw ToolFailure(target.path.parent_path(), "cannot be created: " + error.message());
    }
    OutputFile output(target.path, request.mayOverwrite ? Existing::Replaced : Existing::Kept);
    output.Write(target.bytes);
    output.Commit();
  }
}

}  // namespace kwa

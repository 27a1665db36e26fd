#include "files/extraction.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>

#include "base/ascii_text.h"
#include "report/escaped_text.h"
#include "files/output_file.h"
#include "files/tool_failure.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

std::vector<const ArchiveItem*> SelectItems(const InstallerFile& installer, const std::vector<std::string>& names) {
  std::vector<const ArchiveItem*> items;
  for (const LocatedArchive& located : installer.archives) {
    for (const ArchiveItem& item : located.archive.items) {
      if (names.empty() || std::find(names.begin(), names.end(), item.name) != names.end()) {
        items.push_back(&item);
      }
    }
  }
  return items;
}

// What stands in the way of extracting the items, known before anything is written.
std::vector<Fault> FindFaults(const std::vector<const ArchiveItem*>& items, const std::filesystem::path& path,
                              const ExtractionRequest& request) {
  std::vector<Fault> faults;
  for (const std::string& name : request.names) {
    if (std::none_of(items.begin(), items.end(), [&name](const ArchiveItem* item) { return item->name == name; })) {
      faults.push_back({ShownPath(path), "holds no file " + EscapedText(name)});
    }
  }
  std::set<std::string> upperNames;
  for (const ArchiveItem* const item : items) {
    if (const std::string fault = EntryNameFault(item->name); !fault.empty()) {
      faults.push_back({ShownPath(path), EscapedText(item->name) + ": " + fault});
      continue;
    }
    if (!upperNames.insert(UpperCase(item->name)).second) {
      faults.push_back({ShownPath(path), EscapedText(item->name) +
                                             " stands there twice; to Windows, upper and lower case are the same"});
    }
    const std::filesystem::path target = request.folder / item->name;
    std::error_code ignored;
    // A link counts as what it is, wherever it leads.
    if (!request.mayOverwrite && std::filesystem::exists(std::filesystem::symlink_status(target, ignored))) {
      faults.push_back({ShownPath(target), "exists; --force overwrites it"});
    }
  }
  return faults;
}

}  // namespace

void ExtractFiles(const std::filesystem::path& path, const InstallerFile& installer, const ExtractionRequest& request) {
  const std::vector<const ArchiveItem*> items = SelectItems(installer, request.names);
  if (std::vector<Fault> faults = FindFaults(items, path, request); !faults.empty()) {
    throw ToolFailure(std::move(faults));
  }
  std::error_code error;
  std::filesystem::create_directories(request.folder, error);
  if (error) {
    throw ToolFailure(request.folder, "cannot be created: " + error.message());
  }
  for (const ArchiveItem* const item : items) {
    OutputFile output(request.folder / item->name, request.mayOverwrite ? Existing::Replaced : Existing::Kept);
    output.Write(item->body.Text());
    output.Commit();
  }
}

}  // namespace kwa

#include "files/extraction.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <system_error>
#include <utility>

#include "base/ascii_text.h"
#include "files/output_file.h"
#include "files/tool_failure.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

// What makes it impossible to extract the items, as far as it is known before anything is written.
std::vector<FileFault> FindFaults(const std::vector<ArchiveItem>& items, const std::filesystem::path& path,
                                  const ExtractionRequest& request) {
  std::vector<FileFault> faults;
  for (const std::string& name : request.names) {
    if (std::none_of(items.begin(), items.end(), [&name](const ArchiveItem& item) { return item.name == name; })) {
      faults.push_back({path, "holds no file " + name});
    }
  }
  std::set<std::string> upperNames;
  for (const ArchiveItem& item : items) {
    const std::string name(item.name);
    if (const Check check = CheckEntryName(name); !check) {
      faults.push_back({path, name + ": " + check.error().what});
      continue;
    }
    if (!upperNames.insert(UpperCase(name)).second) {
      faults.push_back({path, name + " is there twice; for Windows, upper and lower case are the same"});
    }
    const std::filesystem::path target = request.folder / name;
    std::error_code ignored;
    // A link counts as a file, wherever it points.
    if (!request.mayOverwrite && std::filesystem::exists(std::filesystem::symlink_status(target, ignored))) {
      faults.push_back({target, "exists; --force overwrites it"});
    }
  }
  return faults;
}

}  // namespace

void ExtractFiles(const std::filesystem::path& path, const std::vector<ArchiveItem>& items,
                  const ExtractionRequest& request) {
  const std::vector<std::string>& names = request.names;
  std::vector<ArchiveItem> selected;
  std::copy_if(items.begin(), items.end(), std::back_inserter(selected), [&names](const ArchiveItem& item) {
    return names.empty() || std::find(names.begin(), names.end(), item.name) != names.end();
  });
  if (std::vector<FileFault> faults = FindFaults(selected, path, request); !faults.empty()) {
    throw ToolFailure(std::move(faults));
  }
  std::error_code error;
  std::filesystem::create_directories(request.folder, error);
  if (error) {
    throw ToolFailure(request.folder, "cannot be created: " + error.message());
  }
  for (const ArchiveItem& item : selected) {
    OutputFile output(request.folder / item.name, request.mayOverwrite ? Existing::Replaced : Existing::Kept);
    output.Write(item.body.Text());
    output.Commit();
  }
}

}  // namespace kwa

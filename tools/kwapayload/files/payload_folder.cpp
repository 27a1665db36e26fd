#include "files/payload_folder.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "archive/archive_format.h"
#include "base/ascii_text.h"
#include "files/tool_failure.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

// The paths in a folder, in the order of an archive.
std::vector<std::filesystem::path> ListFolder(const std::filesystem::path& folder) {
  std::vector<std::filesystem::path> paths;
  std::error_code error;
  std::filesystem::directory_iterator entries(folder, error);
  for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error)) {
    paths.push_back(entries->path());
  }
  if (error) {
    throw ToolFailure(folder, "cannot be read: " + error.message());
  }
  if (paths.empty()) {
    throw ToolFailure(folder, "holds no files");
  }
  std::sort(paths.begin(), paths.end(), [](const std::filesystem::path& left, const std::filesystem::path& right) {
    const std::string upperLeft = UpperCase(left.filename().string());
    const std::string upperRight = UpperCase(right.filename().string());
    return upperLeft != upperRight ? upperLeft < upperRight : left < right;
  });
  return paths;
}

}  // namespace

PayloadFolder::PayloadFolder(std::filesystem::path folderPath, char archive) : path(std::move(folderPath)) {
  std::vector<FileFault> faults;
  for (const std::filesystem::path& file : ListFolder(path)) {
    std::error_code ignored;
    if (std::filesystem::is_directory(file, ignored)) {
      faults.push_back({file, "is a folder; an archive holds only files"});
      continue;
    }
    try {
      files.emplace_back(file);
    } catch (const ToolFailure& failure) {
      faults.insert(faults.end(), failure.Faults().begin(), failure.Faults().end());
      continue;
    }
    const std::string& name = files.back().name;
    const ByteSpan body = files.back().mapped.Bytes();
    if (const Check check = CheckEntryName(name); !check) {
      faults.push_back({file, check.error().what});
    }
    if (body.Size() >= kEntrySizeLimit) {
      faults.push_back(
          {file, "has " + std::to_string(body.Size()) + " bytes; the installer reads bodies below 2147483648"});
    }
    if (!items.empty() && IsSameText(items.back().name, name)) {
      faults.push_back({file, "is the same name for Windows as " + std::string(items.back().name)});
    }
    items.push_back({archive, name, body, {}, 0, 0});
  }
  if (!faults.empty()) {
    throw ToolFailure(std::move(faults));
  }
}

}  // namespace kwa

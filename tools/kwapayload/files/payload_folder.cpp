#include "files/payload_folder.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "archive/archive_format.h"
#include "base/ascii_text.h"
#include "report/escaped_text.h"
#include "files/tool_failure.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

// What is wrong with the file apart from its name, or "".
std::string FileFault(const std::filesystem::directory_entry& entry, std::uint64_t* size) {
  std::error_code error;
  const auto status = entry.status(error);
  if (std::filesystem::is_directory(status)) {
    return "is a folder; an archive holds only files";
  }
  if (!std::filesystem::is_regular_file(status)) {
    return "is not a regular file";
  }
  *size = entry.file_size(error);
  if (error) {
    return "cannot be read: " + error.message();
  }
  if (*size >= kEntrySizeLimit) {
    return "has " + std::to_string(*size) + " bytes; the installer reads bodies below 2147483648";
  }
  return "";
}

}  // namespace

std::vector<PayloadFile> ListPayloadFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::directory_iterator entries(folder, error);
  if (error) {
    throw ToolFailure(folder, "cannot be read: " + error.message());
  }
  std::vector<PayloadFile> files;
  std::vector<Fault> faults;
  const auto check = [&faults](const std::filesystem::path& path, const std::string& what) {
    if (!what.empty()) {
      faults.push_back({ShownPath(path), what});
    }
  };
  for (; entries != std::filesystem::directory_iterator(); entries.increment(error)) {
    PayloadFile file = {entries->path().filename().string(), entries->path(), 0};
    check(file.path, EntryNameFault(file.name));
    check(file.path, FileFault(*entries, &file.size));
    files.push_back(std::move(file));
  }
  if (error) {
    throw ToolFailure(folder, "cannot be read: " + error.message());
  }
  if (files.empty()) {
    throw ToolFailure(folder, "holds no files");
  }
  std::sort(files.begin(), files.end(), [](const PayloadFile& left, const PayloadFile& right) {
    const std::string upperLeft = UpperCase(left.name);
    const std::string upperRight = UpperCase(right.name);
    return upperLeft != upperRight ? upperLeft < upperRight : left.name < right.name;
  });
  for (std::size_t i = 1; i < files.size(); ++i) {
    if (IsSameText(files[i - 1].name, files[i].name)) {
      check(files[i].path, "is to Windows the same name as " + EscapedText(files[i - 1].name));
    }
  }
  if (!faults.empty()) {
    std::stable_sort(faults.begin(), faults.end(),
                     [](const Fault& left, const Fault& right) { return left.file < right.file; });
    throw ToolFailure(std::move(faults));
  }
  return files;
}

}  // namespace kwa

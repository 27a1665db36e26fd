#include "files/installer_input.h"

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

#include "files/tool_failure.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

bool HasInf(const std::filesystem::path& folder) {
  std::error_code ignored;
  const std::filesystem::directory_iterator entries(folder, ignored);
  return std::any_of(begin(entries), end(entries), [](const std::filesystem::directory_entry& entry) {
    return IsInfName(entry.path().filename().string());
  });
}

}  // namespace

InstallerInput::InstallerInput(const std::filesystem::path& filePath) : path(filePath) {
  std::error_code ignored;
  std::filesystem::is_directory(path, ignored) ? ReadFolder() : ReadFile();
}

void InstallerInput::ReadFile() {
  file.emplace(path);
  Result<InstallerFile> read = ReadInstallerFile(file->Bytes());
  if (!read) {
    throw ToolFailure(path, read.error().what);
  }
  installer = std::move(*read);
}

void InstallerInput::ReadFolder() {
  std::error_code ignored;
  if (std::filesystem::is_directory(path / "a", ignored) && std::filesystem::is_directory(path / "b", ignored)) {
    installer.form = InputForm::PayloadFolder;
    folders.emplace_back(path / "a", 'A');
    folders.emplace_back(path / "b", 'B');
  } else {
    if (!HasInf(path)) {
      throw ToolFailure(path,
                        "is neither a payload folder with a and b nor the folder of a driver package with an INF");
    }
    installer.form = InputForm::PackageFolder;
    folders.emplace_back(path, '-');
  }
  for (const PayloadFolder& folder : folders) {
    installer.items.insert(installer.items.end(), folder.Items().begin(), folder.Items().end());
  }
}

const InstallerFile& InstallerInput::SoundFile() const {
  if (!file) {
    throw ToolFailure(path, "is a folder, not an installer or payload archive");
  }
  return SoundInstaller();
}

const InstallerFile& InstallerInput::SoundInstaller() const {
  std::vector<FileFault> faults;
  for (const Finding& finding : installer.findings) {
    if (finding.severity == Severity::Error) {
      faults.push_back({path, finding.where + (finding.where.empty() ? "" : ": ") + finding.what});
    }
  }
  if (!faults.empty()) {
    throw ToolFailure(std::move(faults));
  }
  return installer;
}

}  // namespace kwa

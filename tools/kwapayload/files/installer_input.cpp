#include "files/installer_input.h"

#include <algorithm>
#include <system_error>
#include <utility>
#include <vector>

#include "files/tool_failure.h"
#include "payload/entry_name.h"

namespace kwa {
namespace {

bool IsFolder(const std::filesystem::path& path) {
  std::error_code ignored;
  return std::filesystem::is_directory(path, ignored);
}

bool HasInf(const std::filesystem::path& folder) {
  std::error_code ignored;
  const std::filesystem::directory_iterator entries(folder, ignored);
  return std::any_of(begin(entries), end(entries), [](const std::filesystem::directory_entry& entry) {
    return IsInfName(entry.path().filename().string());
  });
}

}  // namespace

InstallerInput::InstallerInput(const std::filesystem::path& filePath) : path(filePath) {
  if (!IsFolder(path)) {
    file.emplace(path);
    Result<InstallerFile> read = ReadInstallerFile(file->Bytes());
    if (!read) {
      throw ToolFailure(path, read.error().what);
    }
    installer = std::move(*read);
    return;
  }
  std::vector<FileFault> faults;
  const auto addFolder = [&](const std::filesystem::path& folder, char archive) {
    CollectFaults(&faults, [&] {
      const std::vector<ArchiveItem>& items = folders.emplace_back(folder, archive).Items();
      installer.items.insert(installer.items.end(), items.begin(), items.end());
    });
  };
  if (IsFolder(path / "a") && IsFolder(path / "b")) {
    installer.form = InputForm::PayloadFolder;
    addFolder(path / "a", 'A');
    addFolder(path / "b", 'B');
  } else if (HasInf(path)) {
    installer.form = InputForm::PackageFolder;
    addFolder(path, '-');
  } else {
    throw ToolFailure(path, "is neither a payload folder with a and b nor the folder of a driver package with an INF");
  }
  ThrowFaults(std::move(faults));
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
  ThrowFaults(std::move(faults));
  return installer;
}

}  // namespace kwa

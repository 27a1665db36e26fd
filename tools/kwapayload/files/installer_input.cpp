#include "files/installer_input.h"

#include <utility>
#include <vector>

#include "files/tool_failure.h"

namespace kwa {

InstallerInput::InstallerInput(const std::filesystem::path& filePath) : path(filePath), file(filePath) {
  Result<InstallerFile> read = ReadInstallerFile(file.Bytes());
  if (!read) {
    throw ToolFailure(path, read.error().what);
  }
  installer = std::move(*read);
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

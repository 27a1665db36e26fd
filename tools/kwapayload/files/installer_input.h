#pragma once

#include <filesystem>

#include "files/mapped_file.h"
#include "installer/installer_file.h"

namespace kwa {

// The FILE of a command: an installer, signed or not, or a payload archive. Throws ToolFailure when it cannot be read
// or is neither.
class InstallerInput {
 public:
  explicit InstallerInput(const std::filesystem::path& filePath);

  // Points into this object.
  const InstallerFile& Installer() const { return installer; }
  // The same, for commands that need a sound file: throws ToolFailure with every error of its structure.
  const InstallerFile& SoundInstaller() const;

 private:
  std::filesystem::path path;
  MappedFile file;
  InstallerFile installer;
};

}  // namespace kwa

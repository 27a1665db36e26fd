#pragma once

#include <filesystem>
#include <list>
#include <optional>

#include "files/mapped_file.h"
#include "files/payload_folder.h"
#include "installer/installer_file.h"

namespace kwa {

// The FILE of a command: an installer, signed or not, a payload archive, a payload folder with a and b, or the folder
// of a driver package. Throws ToolFailure when it cannot be read or is none of them, with every fault of a folder.
class InstallerInput {
 public:
  explicit InstallerInput(const std::filesystem::path& filePath);

  // Points into this object.
  const InstallerFile& Installer() const { return installer; }
  // The same, for commands that need a sound structure: throws ToolFailure with every error of it.
  const InstallerFile& SoundInstaller() const;
  // The same, for commands that need a file: throws ToolFailure for a folder, too.
  const InstallerFile& SoundFile() const;

 private:
  std::filesystem::path path;
  std::optional<MappedFile> file;
  std::list<PayloadFolder> folders;
  InstallerFile installer;
};

}  // namespace kwa

#pragma once

#include <deque>
#include <filesystem>
#include <string>
#include <vector>

#include "files/mapped_file.h"
#include "payload/archive_reader.h"
#include "payload/payload_contents.h"

namespace kwa {

// The files of a folder, as the items of the archive that would hold them.
class PayloadFolder {
 public:
  // Maps the files. Throws ToolFailure with every fault: what is not a regular file, names that an archive must not
  // hold, names that Windows takes for one, sizes that the installer cannot read, no file at all.
  //
  // archive  'A' or 'B', or '-' where it is not known
  PayloadFolder(const std::filesystem::path& path, char archive);

  // In the order of an archive: ascending bytes of the upper-case names. `position` and `fileOffset` are 0. Valid as
  // long as this object.
  const std::vector<ArchiveItem>& Items() const { return items; }

 private:
  struct File {
    explicit File(const std::filesystem::path& file) : name(file.filename().string()), mapped(file) {}

    std::string name;
    MappedFile mapped;
  };

  std::deque<File> files;
  std::vector<ArchiveItem> items;
};

// The list of contents that the items fit.
PayloadContents ContentsOf(const std::vector<ArchiveItem>& items);

// Reads a file with a list of contents. Throws ToolFailure with every fault of it.
PayloadContents ReadContentsFile(const std::filesystem::path& path);

// Writes an archive of the items, in their order, with its terminator. It appears complete or not at all. Throws
// ToolFailure when the archive would be too large for a 32-bit program or cannot be written.
void PackArchive(const std::vector<ArchiveItem>& items, const std::filesystem::path& archive);

}  // namespace kwa

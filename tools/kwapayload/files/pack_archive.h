#pragma once

#include <filesystem>
#include <vector>

#include "payload/archive_reader.h"

namespace kwa {

// Writes an archive of the items, in their order, with its terminator. It appears complete or not at all. Throws
// ToolFailure when the archive would be too large for a 32-bit program or cannot be written.
void PackArchive(const std::vector<ArchiveItem>& items, const std::filesystem::path& archive);

}  // namespace kwa

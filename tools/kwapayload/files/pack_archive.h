#pragma once

#include <filesystem>
#include <vector>

#include "files/output_file.h"
#include "files/payload_folder.h"

namespace kwa {

// Writes an archive of the files, in their order, with the closing zero word. Bodies are streamed: memory does not grow
// with them. The files are as ListPayloadFolder gives them. Throws ToolFailure when a file cannot be read or no longer
// has its size, the archive would be too large for a 32-bit program, or the output cannot be written.
void PackArchive(const std::vector<PayloadFile>& files, const std::filesystem::path& archive, OutputFile& output);

}  // namespace kwa

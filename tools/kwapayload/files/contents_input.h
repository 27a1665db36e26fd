#pragma once

#include <filesystem>

#include "payload/payload_contents.h"

namespace kwa {

// Reads a file with a list of contents. Throws ToolFailure with every fault of it.
PayloadContents ReadContentsFile(const std::filesystem::path& path);

}  // namespace kwa

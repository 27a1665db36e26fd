#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace kwa {

// One file to be packed.
struct PayloadFile {
  std::string name;
  std::filesystem::path path;
  std::uint64_t size;  // bytes
};

// The files of a folder in the order of an archive: ascending bytes of their upper-case names. Throws ToolFailure with
// every fault: what is not a regular file, names that an archive must not hold, names that Windows takes for one, sizes
// that the installer cannot read, no file at all.
std::vector<PayloadFile> ListPayloadFolder(const std::filesystem::path& folder);

}  // namespace kwa

#pragma once

// The sample's security catalog.

#include <cstddef>
#include <map>
#include <string>

#include "signer.h"

namespace kwa {

// A signed catalog of version 2 that covers the files, given as contents by name: programs by the digest of their
// image, other files by the digest of all their bytes. A remark makes it size bytes long. Throws std::runtime_error
// when size is too small or over 65535.
std::string MakeCatalog(const std::map<std::string, std::string>& files, std::size_t size, const Signer& signer);

}  // namespace kwa

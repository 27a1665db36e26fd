#pragma once

// The sample's security catalog.

#include <cstddef>
#include <map>
#include <string>

#include "signer.h"

namespace kwa {

// A signed catalog of the second generation that covers files, contents by name: programs by the digest of their image,
// others by that of all their bytes. A remark fills it up to size bytes. Throws std::runtime_error when size is too
// small or over 65535.
std::string MakeCatalog(const std::map<std::string, std::string>& files, std::size_t size, const Signer& signer);

}  // namespace kwa

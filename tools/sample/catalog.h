// The sample's security catalog.
#pragma once

#include <cstddef>
#include <string>

namespace kwa {

// PKCS #7 signed data over a catalog list, in DER: well formed, but signed by nobody, and the hashes of its members
// are made up. Throws std::runtime_error when size, in bytes, is too small for a catalog or over 65535.
std::string MakeCatalog(std::size_t size);

}  // namespace kwa

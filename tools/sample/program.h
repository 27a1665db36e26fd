#pragma once

// Brings built programs to the sizes that the list of contents gives them, and signs them.

#include <cstddef>
#include <string>

#include "signer.h"

namespace kwa {

// The Authenticode digest, by SHA-256, of a program, signed or not, with its headers in order.
std::string ImageDigest(const std::string& program);

// The program of size bytes with the checksum that belongs to it; the loader ignores what pads it. Both throw
// std::runtime_error when it has no headers of a program or does not fit into the size.
std::string MakeProgram(const std::string& built, std::size_t size);

// The same with a signature at its end. The size has to be a multiple of 8.
std::string MakeSignedProgram(const std::string& built, std::size_t size, const Signer& signer);

}  // namespace kwa

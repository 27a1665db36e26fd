#pragma once

// Brings built programs to the sizes in the list of contents, and signs them.

#include <cstddef>
#include <string>

#include "signer.h"

namespace kwa {

// The Authenticode digest (SHA-256) of a program, signed or not. Throws std::runtime_error when its headers cannot be
// read.
std::string ImageDigest(const std::string& program);

// The program with padding at its end, which the loader ignores, and with the right checksum: size bytes. Throws
// std::runtime_error when its headers cannot be read or it is larger than size.
std::string MakeProgram(const std::string& built, std::size_t size);

// The same with a signature at the end. The size must be a multiple of 8.
std::string MakeSignedProgram(const std::string& built, std::size_t size, const Signer& signer);

}  // namespace kwa

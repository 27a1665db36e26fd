#pragma once

#include <vector>

#include "trust/file_digests.h"
#include "trust/signature.h"

namespace kwa {

// The signatures that a Windows program carries in its certificate table, none for any other file. One whose digest is
// not that of the program's image has a fault, and so has a table that breaks off or holds none.
std::vector<Signature> ReadEmbeddedSignatures(FileDigests* file);

}  // namespace kwa

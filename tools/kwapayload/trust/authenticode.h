#pragma once

#include <vector>

#include "trust/file_digests.h"
#include "trust/signature.h"

namespace kwa {

// The signatures in the certificate table of a Windows program; none for any other file. A signature over another
// digest than that of the program's image does not hold. A table that is cut off or holds no signature is a signature
// that does not hold.
std::vector<Signature> ReadEmbeddedSignatures(FileDigests& file);

}  // namespace kwa

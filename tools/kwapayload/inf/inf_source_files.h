#pragma once

#include <string>
#include <vector>

#include "base/byte_span.h"

namespace kwa {

// The files that an INF's [SourceDisksFiles] sections name, those for one kind of machine ([SourceDisksFiles.amd64])
// included, in their order. Read by the rules of setup information files: sections of one name belong together, a ';'
// outside quotes begins a comment, names may stand in double quotes. In the code page 1252, at most 260 characters
// each.
std::vector<std::string> ReadInfSourceFiles(ByteSpan inf);

}  // namespace kwa

#pragma once

#include <string>
#include <vector>

#include "inf/inf_text.h"

namespace kwa {

// The files that an INF's [SourceDisksFiles] sections name, those for one kind of machine ([SourceDisksFiles.amd64])
// included, in their order. Read by the rules of setup information files: sections of one name belong together, a ';'
// outside quotes begins a comment, names may stand in double quotes. At most 260 characters each.
std::vector<std::string> ReadInfSourceFiles(const InfText& inf);

}  // namespace kwa

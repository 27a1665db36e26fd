#pragma once

#include <string>
#include <vector>

#include "inf/inf_text.h"

namespace kwa {

// A file that an INF's [SourceDisksFiles] sections name, those for x86 or x64 ([SourceDisksFiles.amd64]) included; the
// installer runs nowhere else.
struct InfSourceFile {
  std::string name;
  std::string platform;  // "amd64" and the like, "" for all
  std::string folder;    // where Setup looks for it, beside the INF: "" for the INF's own folder
};

// In their order.
std::vector<InfSourceFile> ReadInfSourceFiles(const InfText& inf);

}  // namespace kwa

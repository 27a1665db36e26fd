#pragma once

#include <string>
#include <vector>

#include "pe/pe_image.h"

namespace kwa {

struct ImportedLibrary {
  std::string name;                    // raw
  std::vector<std::string> functions;  // names, or "#12" for an ordinal
};

struct ImportTable {
  std::vector<ImportedLibrary> libraries;
  // False when the table runs out of its section, names something outside the file, or exceeds 1024 libraries, 65536
  // functions or 512 characters in a name: no honest file does.
  bool isComplete = true;
};

// What the image imports, at load time and delayed.
ImportTable ReadImports(const PeImage& image);

}  // namespace kwa

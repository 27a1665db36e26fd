#pragma once

#include <cstddef>
#include <string>

#include "installer/inspection.h"

namespace kwa {

// For people: a table of the files, then the installer, the signatures and the package.
//
// file           the name of the file, raw
// terminalWidth  in characters; 0 where there is no terminal: nothing is cut then
std::string ListText(const std::string& file, const Inspection& inspection, std::size_t terminalWidth);

}  // namespace kwa

#pragma once

#include <string>

#include "installer/inspection.h"

namespace kwa {

// For people: a table of the files, then the installer, the signatures and the package.
//
// file  the name of the file, raw
std::string ListText(const std::string& file, const Inspection& inspection);

}  // namespace kwa

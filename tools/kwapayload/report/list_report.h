#pragma once

#include <string>

#include "installer/inspection.h"

namespace kwa {

// For people: a table of the files, the signatures, then the package.
std::string ListText(const Inspection& inspection);

}  // namespace kwa

#pragma once

#include <string>

#include "installer/inspection.h"

namespace kwa {

// A bill of materials of an installer or archive in CycloneDX 1.6 (JSON): the file itself, and each payload file as a
// component. The same file and name give the same bytes: there is no time in it, and the serial number comes from the
// rest.
//
// name  of the file, as it is released; raw
std::string BillOfMaterials(const std::string& name, const Inspection& inspection);

}  // namespace kwa

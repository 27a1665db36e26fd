#pragma once

#include <string>

#include "base/finding.h"
#include "installer/comparison.h"

// The reports for programs; docs/json.md lists their fields. A fact that is not there is null.

namespace kwa {

std::string ListJson(const Inspection& inspection);

std::string CompareJson(const Comparison& comparison);

// file  the name under which the file was given, raw
std::string VerifyJson(const std::string& file, const Findings& findings);

}  // namespace kwa

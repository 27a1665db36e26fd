#pragma once

#include <string>

#include "base/finding.h"
#include "installer/comparison.h"
#include "verify/verification.h"

// The reports for programs; docs/json.md lists their fields. A fact that is not there is null.

namespace kwa {

// file  the name of the file, raw
std::string ListJson(const std::string& file, const Inspection& inspection);

std::string CompareJson(const Comparison& comparison);

// file  likewise
std::string VerifyJson(const std::string& file, const Verification& verification);

}  // namespace kwa

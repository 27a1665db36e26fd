#pragma once

#include <string>

#include "base/finding.h"
#include "installer/comparison.h"
#include "verify/verification.h"

// The reports of compare and verify for people.

namespace kwa {

// Nothing but differences: "" where there are none.
std::string CompareText(const Comparison& comparison);

// Who signed the installer, then one line a finding, or that there is none.
//
// file  the name under which the file was given, raw
std::string VerifyText(const std::string& file, const Verification& verification);

}  // namespace kwa

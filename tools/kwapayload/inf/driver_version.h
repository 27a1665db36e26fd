#pragma once

#include <string>

namespace kwa {

// The version of an INF's DriverVer value with all four parts, as a version resource has it: "1.0.42" becomes
// "1.0.42.0". "" if the value is not one that Setup ranks packages by: a date that exists, as mm/dd/yyyy or mm-dd-yyyy,
// a comma, and one to four numbers up to 65535 with dots between them. Blanks around both parts and a comment after
// them are allowed, because Setup removes them.
std::string DriverVersion(const std::string& driverVer);

}  // namespace kwa

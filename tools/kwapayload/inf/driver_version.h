#pragma once

#include <string>

namespace kwa {

// The version part of an INF's DriverVer value as a version record spells it, all four parts ("1.0.42" is "1.0.42.0"),
// or "" when the value is not what Setup ranks packages by: a date that exists, mm/dd/yyyy (Setup takes '-' as well),
// a comma, and one to four numbers up to 65535 with dots between. Blanks around either part and a comment behind are
// Setup's to drop.
std::string DriverVersion(const std::string& driverVer);

}  // namespace kwa

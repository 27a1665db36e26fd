#include "inf/driver_version.h"

#include <regex>

namespace kwa {
namespace {

bool DateExists(int month, int day, int year) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool isLeapYear = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  return year > 0 && month >= 1 && month <= 12 && day >= 1 &&
         day <= kDays[month - 1] + (month == 2 && isLeapYear ? 1 : 0);
}

}  // namespace

std::string DriverVersion(const std::string& driverVer) {
  static const std::regex kForm(
      R"(\s*(\d\d)[/-](\d\d)[/-](\d{4})\s*,\s*(\d{1,5})(?:\.(\d{1,5}))?(?:\.(\d{1,5}))?(?:\.(\d{1,5}))?\s*(?:;.*)?)");
  std::smatch parts;
  if (!std::regex_match(driverVer, parts, kForm) ||
      !DateExists(std::stoi(parts[1]), std::stoi(parts[2]), std::stoi(parts[3]))) {
    return "";
  }
  constexpr int kFirst = 4;
  constexpr int kLast = 7;
  std::string version;
  for (int i = kFirst; i <= kLast; ++i) {
    const int number = parts[i].matched ? std::stoi(parts[i]) : 0;
    if (number > 65535) {
      return "";
    }
    version += (i == kFirst ? "" : ".") + std::to_string(number);
  }
  return version;
}

}  // namespace kwa

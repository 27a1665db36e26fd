#include "inf/driver_version.h"

#include <algorithm>
#include <regex>
#include <tuple>

namespace kwa {
namespace {

bool DateExists(int month, int day, int year) {
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool isLeapYear = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  return year > 0 && month >= 1 && month <= 12 && day >= 1 &&
         day <= kDays[month - 1] + (month == 2 && isLeapYear ? 1 : 0);
}

}  // namespace

std::string DriverVersion::VersionText() const {
  std::string text;
  for (const int number : version) {
    text += (text.empty() ? "" : ".") + std::to_string(number);
  }
  return text;
}

bool operator<(const DriverVersion& one, const DriverVersion& other) {
  return std::tie(one.date, one.version) < std::tie(other.date, other.version);
}

std::optional<DriverVersion> ReadDriverVersion(const std::string& driverVer) {
  static const std::regex kForm(
      R"(\s*(\d\d)[/-](\d\d)[/-](\d{4})\s*,\s*(\d{1,5})(?:\.(\d{1,5}))?(?:\.(\d{1,5}))?(?:\.(\d{1,5}))?\s*(?:;.*)?)");
  std::smatch parts;
  if (!std::regex_match(driverVer, parts, kForm)) {
    return std::nullopt;
  }
  const auto number = [&parts](std::size_t index) { return parts[index].matched ? std::stoi(parts[index]) : 0; };
  const DriverVersion read = {{number(3), number(1), number(2)}, {number(4), number(5), number(6), number(7)}};
  const bool isInRange = std::all_of(read.version.begin(), read.version.end(), [](int part) { return part <= 65535; });
  return isInRange && DateExists(number(1), number(2), number(3)) ? std::optional(read) : std::nullopt;
}

}  // namespace kwa

#include "package/package_identity.h"

#include <algorithm>
#include <regex>

#include "base/ascii_text.h"

namespace kwa {
namespace {

// The characters that the platform removes around lines, names and values: blanks, and the old end-of-file character.
constexpr std::string_view kBlanks = " \t\v\f\x1A";

// A name or value without the blanks around it, up to the first NUL.
std::string_view Cleaned(std::string_view text) {
  const std::string_view trimmed = Trimmed(text, kBlanks);
  return trimmed.substr(0, trimmed.find('\0'));
}

std::string_view WithoutQuotes(std::string_view value) {
  const bool isQuoted =
      value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front();
  return isQuoted ? value.substr(1, value.size() - 2) : value;
}

// The value of a key of [Version], as GetPrivateProfileStringA with the default "" and a buffer that is large enough
// gives it to the installer. "" if the section or the key is missing.
//
// The rules of the profile API differ from those of Setup (see SetupInf). Only the first section of a name and the
// first key of a name in it count, without regard to case. The name of a section ends at the last closing bracket. A
// ';' after a value begins no comment. Nothing is substituted. One pair of quotes of either kind around the whole value
// is removed. A NUL ends a name or a value.
std::string ReadProfileValue(const InfText& inf, std::string_view key) {
  bool inSection = false;
  for (std::string_view text = inf.Text(); !text.empty();) {
    const std::string_view line = Trimmed(TakeLine(&text), kBlanks);
    const std::size_t closing = line.rfind(']');
    if (closing != std::string_view::npos && line.front() == '[') {
      if (inSection) {
        break;
      }
      inSection = IsSameText(Cleaned(line.substr(1, closing - 1)), "Version");
    } else if (inSection) {
      const std::size_t equalsSign = line.find('=');
      if (IsSameText(Cleaned(line.substr(0, equalsSign)), key)) {
        const bool hasValue = equalsSign != std::string_view::npos;
        return hasValue ? std::string(WithoutQuotes(Cleaned(line.substr(equalsSign + 1)))) : "";
      }
    }
  }
  return "";
}

}  // namespace

PackageIdentity ReadHostPackageIdentity(const InfText& inf) {
  PackageIdentity identity;
  identity.certainty = inf.Encoding();
  const auto read = [&](const char* key) {
    IdentityValue value = {ReadProfileValue(inf, key), false};
    value.isCut = value.text.size() > kProfileValueLimit;
    value.text.resize(std::min(value.text.size(), kProfileValueLimit));
    if (inf.IsUtf16() && value.text.find(InfText::kOtherUnit) != std::string::npos) {
      std::replace(value.text.begin(), value.text.end(), InfText::kOtherUnit, '?');
      identity.certainty =
          Failure(std::string("has characters beyond ASCII in ") + key + ", which each Windows reads in its own way");
    }
    return value;
  };
  identity.version = read("DriverVer");
  identity.displayName = read("DriverPackageDisplayName");
  return identity;
}

std::optional<DriverVersion> ReadDriverVersion(const std::string& driverVer) {
  static const std::regex kForm(
      R"(\s*(\d\d)[/-](\d\d)[/-](\d{4})\s*,\s*(\d{1,5})(?:\.(\d{1,5}))?(?:\.(\d{1,5}))?(?:\.(\d{1,5}))?\s*(?:;.*)?)");
  std::smatch parts;
  if (!std::regex_match(driverVer, parts, kForm)) {
    return std::nullopt;
  }
  const auto number = [&parts](std::size_t index) { return parts[index].matched ? std::stoi(parts[index]) : 0; };
  const int year = number(3);
  const int month = number(1);
  const int day = number(2);
  constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  const bool isLeapYear = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  const bool isDate =
      year > 0 && month >= 1 && month <= 12 && day >= 1 && day <= kDays[month - 1] + (month == 2 && isLeapYear ? 1 : 0);
  const DriverVersion read = {year, month, day, number(4), number(5), number(6), number(7)};
  return isDate && *std::max_element(read.begin() + 3, read.end()) <= 65535 ? std::optional(read) : std::nullopt;
}

std::string VersionText(const DriverVersion& version) {
  std::string text = std::to_string(version[3]);
  for (std::size_t i = 4; i < version.size(); ++i) {
    text += "." + std::to_string(version[i]);
  }
  return text;
}

}  // namespace kwa

#include "payload/entry_name.h"

#include <algorithm>
#include <array>
#include <string>

#include "archive/archive_format.h"
#include "base/ascii_text.h"

namespace kwa {
namespace {

// Windows reserves a device's name with any extension, and ignores blanks before the extension.
bool IsDeviceName(std::string_view name) {
  std::string stem = UpperCase(name.substr(0, name.find('.')));
  stem.erase(stem.find_last_not_of(' ') + 1);
  constexpr std::array<std::string_view, 6> kDevices = {"CON", "PRN", "AUX", "NUL", "CONIN$", "CONOUT$"};
  if (std::find(kDevices.begin(), kDevices.end(), stem) != kDevices.end()) {
    return true;
  }
  const bool isPort = stem.compare(0, 3, "COM") == 0 || stem.compare(0, 3, "LPT") == 0;
  return isPort && stem.size() == 4 && stem[3] >= '0' && stem[3] <= '9';
}

}  // namespace

bool IsInfName(std::string_view name) {
  constexpr std::string_view kExtension = ".inf";
  return name.size() >= kExtension.size() && IsSameText(name.substr(name.size() - kExtension.size()), kExtension);
}

Check CheckEntryName(std::string_view name) {
  if (name.empty()) {
    return Failure("the name is empty");
  }
  if (name.size() >= kEntryNameCapacity) {
    return Failure("the name has " + std::to_string(name.size()) + " bytes; an archive holds at most 259");
  }
  if (std::any_of(name.begin(), name.end(), [](char c) { return c < 0x20 || c > 0x7E; })) {
    return Failure("the name is not plain printable ASCII");
  }
  if (const auto at = name.find_first_of("<>:\"/\\|?*"); at != std::string_view::npos) {
    return Failure(std::string("the name holds a '") + name[at] + "', which Windows refuses in a bare file name");
  }
  if (name.find(';') != std::string_view::npos) {
    return Failure("the name holds a ';', at which the build's lists of files are split");
  }
  if (name.back() == '.' || name.back() == ' ') {
    return Failure("the name ends in a dot or blank, which Windows drops");
  }
  if (IsDeviceName(name)) {
    return Failure("the name is a device's on Windows");
  }
  return {};
}

}  // namespace kwa

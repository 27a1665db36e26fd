#pragma once

#include <string>
#include <vector>

namespace kwa {

enum class Severity {
  Error,    // the installer fails, or installs something wrong
  Warning,  // no run suffers, but no writer of ours makes it
};

// One thing that is not as it should be.
struct Finding {
  Severity severity;
  std::string where;      // what it is about, such as "archive A, marlin_usb.inf"; escaped, fit for one line
  std::string what;       // escaped likewise
  std::string code = {};  // the kind of fault for other programs, such as "name-not-ended"; never renamed
};

}  // namespace kwa

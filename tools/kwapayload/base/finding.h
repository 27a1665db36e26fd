#pragma once

#include <string>
#include <vector>

namespace kwa {

enum class Severity {
  Error,    // the installer fails, or installs something wrong
  Warning,  // no run fails by it, but somebody should look
};

// One thing that is not as it should be.
struct Finding {
  Severity severity;
  std::string where;  // what it is about, such as "archive A, marlin_usb.inf"; escaped, fit for one line
  std::string what;   // escaped likewise
  std::string code;   // the kind of fault for other programs, such as "name-empty"; never renamed
};

// What was found, in its order: the first 1,000 findings of all sources together. More than anyone reads, and a file
// that is made of faults does not fill the memory with them; one last finding says that there were more.
class Findings {
 public:
  void Add(Finding finding);
  void AddError(std::string where, std::string what, std::string code);
  void AddWarning(std::string where, std::string what, std::string code);
  void AddAll(const Findings& others);

  bool Empty() const { return list.empty(); }
  // Whether an error was found, the findings left out counted.
  bool HasError() const;
  std::vector<Finding>::const_iterator begin() const { return list.begin(); }
  std::vector<Finding>::const_iterator end() const { return list.end(); }

 private:
  std::vector<Finding> list;
};

}  // namespace kwa

#pragma once

#include <string>
#include <vector>

namespace kwa {

enum class Severity {
  Error,    // the installer fails, or installs something wrong
  Warning,  // no run fails because of it, but somebody should look
};

// One thing that is not as it should be. Texts are raw.
struct Finding {
  Severity severity;
  std::string where;  // what it is about, such as "archive A, marlin_usb.inf"; "" for the file as a whole
  std::string what;   // a phrase that follows `where`
  std::string code;   // the kind of fault for other programs, such as "name-empty"; never renamed
};

// Findings in the order in which they were added: the first 1,000 of all sources together. That is more than anyone
// reads, and a file that is full of faults does not fill the memory with them. One last finding then says that there
// are more.
class Findings {
 public:
  void Add(Finding finding);
  void AddError(std::string where, std::string what, std::string code);
  void AddWarning(std::string where, std::string what, std::string code);
  void AddAll(const Findings& others);

  bool Empty() const { return list.empty(); }
  // Whether there is an error, also among the findings that are left out.
  bool HasError() const;
  std::vector<Finding>::const_iterator begin() const { return list.begin(); }
  std::vector<Finding>::const_iterator end() const { return list.end(); }

 private:
  std::vector<Finding> list;
};

}  // namespace kwa

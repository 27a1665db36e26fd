#pragma once

#include <exception>
#include <filesystem>
#include <string>
#include <vector>

namespace kwa {

// One line of what is wrong: the program writes it as "kwapayload: FILE: what".
struct Fault {
  std::string file;  // as ShownPath or EscapedName give it: never breaks the line
  std::string what;
};

// Ends a command with exit status 1. Carries at least one fault.
class ToolFailure : public std::exception {
 public:
  ToolFailure(const std::filesystem::path& file, const std::string& what);
  explicit ToolFailure(std::vector<Fault> allFaults);

  const std::vector<Fault>& Faults() const { return faults; }
  // The first fault's line.
  const char* what() const noexcept override { return text.c_str(); }

 private:
  std::vector<Fault> faults;
  std::string text;
};

// "what: the system's text for the error number".
std::string WithSystemText(const std::string& what, int errorNumber);

}  // namespace kwa

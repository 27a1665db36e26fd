#pragma once

#include <exception>
#include <filesystem>
#include <string>
#include <vector>

namespace kwa {

// One line of what is wrong with a file. Texts are raw.
struct FileFault {
  std::filesystem::path file;
  std::string what;  // a phrase that follows the path, such as "is empty"
};

// Ends a command: it could not be done. Carries at least one fault.
class ToolFailure : public std::exception {
 public:
  ToolFailure(const std::filesystem::path& file, const std::string& what);
  explicit ToolFailure(std::vector<FileFault> allFaults);

  const std::vector<FileFault>& Faults() const { return faults; }
  // What is wrong with the first file, without its path.
  const char* what() const noexcept override { return faults.front().what.c_str(); }

 private:
  std::vector<FileFault> faults;
};

// "what: the system's text for the error number".
std::string WithSystemText(const std::string& what, int errorNumber);

}  // namespace kwa

#pragma once

#include <exception>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
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
  ToolFailure(const std::filesystem::path& file, const std::string& what) : faults({{file, what}}) {}
  explicit ToolFailure(std::vector<FileFault> allFaults) : faults(std::move(allFaults)) {}

  const std::vector<FileFault>& Faults() const { return faults; }
  // What is wrong with the first file, without its path.
  const char* what() const noexcept override { return faults.front().what.c_str(); }

 private:
  std::vector<FileFault> faults;
};

// Throws ToolFailure if there are faults.
inline void ThrowFaults(std::vector<FileFault> faults) {
  if (!faults.empty()) {
    throw ToolFailure(std::move(faults));
  }
}

// Takes a step, and adds the faults of a ToolFailure that it throws to those of other steps.
template <typename Step>
void CollectFaults(std::vector<FileFault>* faults, Step step) {
  try {
    step();
  } catch (const ToolFailure& failure) {
    faults->insert(faults->end(), failure.Faults().begin(), failure.Faults().end());
  }
}

// "what: the system's text for the error number".
inline std::string WithSystemText(const std::string& what, int errorNumber) {
  return what + ": " + std::generic_category().message(errorNumber);
}

}  // namespace kwa

#include "files/tool_failure.h"

#include <system_error>
#include <utility>

namespace kwa {

ToolFailure::ToolFailure(const std::filesystem::path& file, const std::string& what) : faults({{file, what}}) {}

ToolFailure::ToolFailure(std::vector<FileFault> allFaults) : faults(std::move(allFaults)) {}

std::string WithSystemText(const std::string& what, int errorNumber) {
  return what + ": " + std::generic_category().message(errorNumber);
}

}  // namespace kwa

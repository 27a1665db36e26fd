#include "files/tool_failure.h"

#include <system_error>
#include <utility>

#include "report/escaped_text.h"

namespace kwa {

ToolFailure::ToolFailure(const std::filesystem::path& file, const std::string& what)
    : ToolFailure(std::vector<Fault>{{ShownPath(file), what}}) {}

ToolFailure::ToolFailure(std::vector<Fault> allFaults)
    : faults(std::move(allFaults)), text(faults.front().file + ": " + faults.front().what) {}

std::string WithSystemText(const std::string& what, int errorNumber) {
  return what + ": " + std::generic_category().message(errorNumber);
}

}  // namespace kwa

#pragma once

#include <string>
#include <vector>

struct ToolRun {
  int status;          // exit status
  std::string output;  // standard output
  std::string errors;  // standard error
};

// Runs the built kwapayload.
ToolRun RunTool(const std::vector<std::string>& arguments);

// Expects exit status 2, no output, and on the error stream one line for each fault. A fault begins with the name of a
// file in the folder.
void ExpectFailure(const ToolRun& run, const std::string& folder, const std::vector<std::string>& faults);

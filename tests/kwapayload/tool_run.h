#pragma once

#include <string>
#include <vector>

struct ToolRun {
  int status;          // exit status
  std::string output;  // standard output
  std::string errors;  // standard error
};

// Runs the built kwapayload. `before` is put in front of the command, for the shell.
ToolRun RunTool(const std::vector<std::string>& arguments, const std::string& before = "");

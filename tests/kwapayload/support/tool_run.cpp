#include "tool_run.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>

#include "temporary_folder.h"

ToolRun RunTool(const std::vector<std::string>& arguments) {
  const TemporaryFolder folder;
  std::string command = "'" KWA_TOOL "'";
  for (const std::string& argument : arguments) {
    command += " '" + argument + "'";
  }
  command += " >'" + (folder / "out") + "' 2>'" + (folder / "err") + "'";
  // A shell redirects the output.
  const int result = std::system(command.c_str());  // NOLINT(cert-env33-c)
  const int status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
  return {status, ReadWholeFile(folder / "out"), ReadWholeFile(folder / "err")};
}

void ExpectFailure(const ToolRun& run, const std::string& folder, const std::vector<std::string>& faults) {
  std::string expected;
  for (const std::string& fault : faults) {
    expected += "kwapayload: " + folder + "/" + fault + "\n";
  }
  EXPECT_EQ(2, run.status);
  EXPECT_EQ(expected, run.errors);
  EXPECT_EQ("", run.output);
}

#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>

#include "built_archive.h"
#include "temporary_folder.h"

struct ToolRun {
  int status;          // exit status
  std::string output;  // standard output
  std::string errors;  // standard error
};

// Runs the built kwapayload.
inline ToolRun RunTool(const std::vector<std::string>& arguments) {
  const TemporaryFolder streams;
  std::string command = "'" KWA_TOOL "'";
  for (const std::string& argument : arguments) {
    command += " '" + argument + "'";
  }
  command += " >'" + (streams / "out") + "' 2>'" + (streams / "err") + "'";
  // A shell redirects the output.
  const int result = std::system(command.c_str());  // NOLINT(cert-env33-c)
  return {WIFEXITED(result) ? WEXITSTATUS(result) : -1, ReadWholeFile(streams / "out"), ReadWholeFile(streams / "err")};
}

// Runs with files in a folder of the test's own.
class ToolTest : public testing::Test {
 protected:
  std::string MakeFile(const std::string& name, const std::string& bytes) const {
    WriteWholeFile(folder / name, bytes);
    return folder / name;
  }

  // Expects exit status 2, no output, and on the error stream one line for each fault. A fault begins with the name of
  // a file in the folder.
  void ExpectFailure(const std::vector<std::string>& arguments, const std::vector<std::string>& faults) const {
    const ToolRun run = RunTool(arguments);
    std::string errors;
    for (const std::string& fault : faults) {
      errors += "kwapayload: " + (folder / fault) + "\n";
    }
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.errors, errors);
    EXPECT_EQ(run.output, "");
  }

  const TemporaryFolder folder;
};

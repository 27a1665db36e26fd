#include "tool_run.h"

#include <cstdlib>

#ifndef _WIN32
#include <sys/wait.h>
#endif

#include "temporary_folder.h"

namespace {

std::string Quoted(const std::string& text) {
#ifdef _WIN32
  return '"' + text + '"';
#else
  return '\'' + text + '\'';
#endif
}

}  // namespace

ToolRun RunTool(const std::vector<std::string>& arguments, const std::string& before) {
  const TemporaryFolder folder;
  std::string command = before + Quoted(KWA_TOOL);
  for (const std::string& argument : arguments) {
    command += ' ' + Quoted(argument);
  }
  command += " >" + Quoted(folder / "out") + " 2>" + Quoted(folder / "err");
#ifdef _WIN32
  // cmd takes off the first and the last quote.
  const int status = std::system(('"' + command + '"').c_str());
#else
  // The shell that redirects the output is wanted here.
  const int result = std::system(command.c_str());  // NOLINT(cert-env33-c)
  const int status = WIFEXITED(result) ? WEXITSTATUS(result) : -1;
#endif
  return {status, ReadWholeFile(folder / "out"), ReadWholeFile(folder / "err")};
}

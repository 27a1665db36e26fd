#pragma once

#include <windows.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

// How a test starts the installer.
struct RunSetup {
  std::string program;
  std::string currentFolder;
  // Changes to this process's environment; nothing: the variable is not set.
  std::map<std::string, std::optional<std::string>> environment;
};

struct RunResult {
  DWORD exitStatus = 0;
  // How often the runtime's invalid-parameter line went to the debugger.
  int invalidParameterLines = 0;
  // Messages that Windows showed in the program's name; they were closed.
  int messageBoxes = 0;
};

// A running program, debugged by this process so that its debugger output and its exact exit status are seen. Programs
// that it starts are not debugged.
class DebuggedRun {
 public:
  explicit DebuggedRun(const RunSetup& setup);
  ~DebuggedRun();
  DebuggedRun(const DebuggedRun&) = delete;
  DebuggedRun& operator=(const DebuggedRun&) = delete;

  // Lets it run until it has ended. A debuggee stands still whenever its debugger is away: between two calls of Await
  // and AwaitUntil it goes no further than to its next event.
  RunResult Await();

  // Lets it run until the condition holds, which is asked often, or it has ended; tells whether it still runs.
  bool AwaitUntil(const std::function<bool()>& condition);

  // Ends it half way, as the user's task manager would.
  void Kill();

 private:
  void Handle(const DEBUG_EVENT& event);
  void CloseMessageBoxes();

  PROCESS_INFORMATION process = {};
  bool hasEnded = false;
  RunResult result;
};

RunResult RunToEnd(const RunSetup& setup);

#include "debugged_run.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

constexpr char kInvalidParameter[] = "Invalid parameter passed to C runtime function.\n";
constexpr DWORD kLookAroundMilliseconds = 5;

std::string EnvironmentBlock(const std::map<std::string, std::optional<std::string>>& changes) {
  std::string block;
  char* const own = GetEnvironmentStringsA();
  for (const char* variable = own; *variable != '\0'; variable += std::strlen(variable) + 1) {
    const std::string text = variable;
    // The name of a variable that begins with "=" has its end behind that.
    if (changes.count(text.substr(0, text.find('=', 1))) == 0) {
      block += text + '\0';
    }
  }
  FreeEnvironmentStringsA(own);
  for (const auto& [name, value] : changes) {
    if (value) {
      block += name + "=" + *value + '\0';
    }
  }
  return block + '\0';
}

}  // namespace

DebuggedRun::DebuggedRun(const RunSetup& setup) {
  STARTUPINFOA startup = {};
  startup.cb = sizeof startup;
  std::string commandLine = "\"" + setup.program + "\" /never read";
  std::string environment = EnvironmentBlock(setup.environment);
  const BOOL isStarted =
      CreateProcessA(setup.program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, DEBUG_ONLY_THIS_PROCESS,
                     environment.data(), setup.currentFolder.c_str(), &startup, &process);
  if (isStarted == FALSE) {
    hasEnded = true;
    ADD_FAILURE() << setup.program << " did not start: error " << GetLastError()
                  << " (740: it wants a test that runs as administrator)";
  }
}

DebuggedRun::~DebuggedRun() {
  if (!hasEnded) {
    Kill();
  }
  CloseHandle(process.hThread);
  CloseHandle(process.hProcess);
}

RunResult DebuggedRun::Await() {
  AwaitUntil([] { return false; });
  return result;
}

bool DebuggedRun::AwaitUntil(const std::function<bool()>& condition) {
  while (!hasEnded) {
    if (condition()) {
      return true;
    }
    DEBUG_EVENT event = {};
    if (WaitForDebugEvent(&event, kLookAroundMilliseconds) != FALSE) {
      Handle(event);
    } else {
      CloseMessageBoxes();
    }
  }
  return false;
}

void DebuggedRun::Handle(const DEBUG_EVENT& event) {
  DWORD answer = DBG_CONTINUE;
  switch (event.dwDebugEventCode) {
    case CREATE_PROCESS_DEBUG_EVENT:
      CloseHandle(event.u.CreateProcessInfo.hFile);
      break;
    case LOAD_DLL_DEBUG_EVENT:
      CloseHandle(event.u.LoadDll.hFile);
      break;
    case OUTPUT_DEBUG_STRING_EVENT: {
      std::string text(event.u.DebugString.nDebugStringLength, '\0');
      ReadProcessMemory(process.hProcess, event.u.DebugString.lpDebugStringData, text.data(), text.size(), nullptr);
      // The platform may have lines of its own to say.
      result.invalidParameterLines += std::strcmp(text.c_str(), kInvalidParameter) == 0 ? 1 : 0;
      break;
    }
    case EXCEPTION_DEBUG_EVENT:
      if (event.u.Exception.ExceptionRecord.ExceptionCode != EXCEPTION_BREAKPOINT) {
        answer = DBG_EXCEPTION_NOT_HANDLED;
      }
      break;
    case EXIT_PROCESS_DEBUG_EVENT:
      result.exitStatus = event.u.ExitProcess.dwExitCode;
      hasEnded = true;
      break;
    default:
      break;
  }
  ContinueDebugEvent(event.dwProcessId, event.dwThreadId, answer);
}

// The shell's word on a failed deletion, and the runtime's on an abnormal end.
void DebuggedRun::CloseMessageBoxes() {
  constexpr char kDialogClass[] = "#32770";
  for (HWND window = FindWindowExA(nullptr, nullptr, kDialogClass, nullptr); window != nullptr;
       window = FindWindowExA(nullptr, window, kDialogClass, nullptr)) {
    DWORD owner = 0;
    GetWindowThreadProcessId(window, &owner);
    if (owner == process.dwProcessId && IsWindowVisible(window) != FALSE) {
      ++result.messageBoxes;
      PostMessageA(window, WM_COMMAND, IDOK, 0);
      PostMessageA(window, WM_CLOSE, 0, 0);
    }
  }
}

void DebuggedRun::Kill() {
  TerminateProcess(process.hProcess, 1);
  Await();
}

RunResult RunToEnd(const RunSetup& setup) {
  return DebuggedRun(setup).Await();
}

#include "app/dpinst_process.h"

#include <windows.h>
// After windows.h, which it needs.
#include <strsafe.h>

#include <cstring>

#include "support/last_error.h"

namespace kwa {
namespace {

void AwaitAndClose(const PROCESS_INFORMATION& process) {
  if (WaitForSingleObject(process.hProcess, INFINITE) != WAIT_OBJECT_0) {
    ReportLastError();
  }
  DWORD exitCode = 0;  // DPInst has told its user; nobody reads this one
  if (GetExitCodeProcess(process.hProcess, &exitCode) == 0) {
    ReportLastError();
  }
  GetExitCodeThread(process.hThread, &exitCode);
  CloseHandle(process.hProcess);
  CloseHandle(process.hThread);
}

}  // namespace

bool RunDpinst(const char* programPath) {
  const std::size_t size = std::strlen(programPath) + 1;
  // CreateProcessA wants a command line that it may write to.
  auto* const commandLine = static_cast<char*>(HeapAlloc(GetProcessHeap(), 0, size));
  if (commandLine == nullptr) {
    return false;
  }
  // The block has exactly the size that is needed.
  // cppcheck-suppress ignoredReturnValue
  StringCchCopyA(commandLine, size, programPath);

  PROCESS_INFORMATION process = {};
  STARTUPINFOA startup = {};
  startup.cb = sizeof(startup);
  if (CreateProcessA(nullptr, commandLine, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process) == 0) {
    ReportLastError();
  }
  if (process.hProcess != nullptr) {
    AwaitAndClose(process);
  }
  HeapFree(GetProcessHeap(), 0, commandLine);
  return true;
}

}  // namespace kwa

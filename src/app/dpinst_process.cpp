#include "app/dpinst_process.h"

#include <windows.h>
// It needs windows.h before it.
#include <strsafe.h>

#include <cstring>

#include "support/last_error.h"

namespace kwa {
namespace {

void AwaitAndClose(const PROCESS_INFORMATION& process) {
  if (WaitForSingleObject(process.hProcess, INFINITE) != WAIT_OBJECT_0) {
    ReportLastError();
  }
  DWORD exitCode = 0;  // not used: DPInst has already shown the result to the user
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
  // CreateProcessA may write to its command line, so it gets a copy.
  auto* const commandLine = static_cast<char*>(HeapAlloc(GetProcessHeap(), 0, size));
  if (commandLine == nullptr) {
    return false;
  }
  // It cannot fail: the block is exactly large enough.
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

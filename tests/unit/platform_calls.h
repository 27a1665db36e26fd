#pragma once

#include <windows.h>

#include <string>
#include <vector>

// The platform as this program's copy of the installer's code sees it: while a PlatformCalls lives, calls are noted and
// answered as the test says; otherwise they go to the real platform.
struct PlatformAnswers {
  bool heapAlloc = true;
  BOOL createProcess = TRUE;
  DWORD wait = WAIT_OBJECT_0;
  BOOL getExitCodeProcess = TRUE;
  DWORD lastError = ERROR_FILE_NOT_FOUND;
  bool formatMessage = true;
  bool kernelModule = true;
  bool wow64Function = true;
  UINT wow64Length = 0;
  int shFileOperation = 0;
  BOOL getVersion = TRUE;
  DWORD majorVersion = 0;
  HANDLE search = nullptr;
};

class PlatformCalls {
 public:
  explicit PlatformCalls(const PlatformAnswers& answers);
  ~PlatformCalls();
  PlatformCalls(const PlatformCalls&) = delete;
  PlatformCalls& operator=(const PlatformCalls&) = delete;

  // One line a call: the function and the arguments that matter.
  const std::vector<std::string>& Made() const;
};

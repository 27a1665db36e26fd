// A DPInst that a test holds by the hand: it writes its process number to the file that KWA_TEST_PROCESS_FILE names,
// sets the event KWA_TEST_STARTED and ends when the event KWA_TEST_END is set.

#include <windows.h>

#include <cstdio>

namespace {

HANDLE OpenNamedEvent(const char* variable) {
  char name[MAX_PATH] = {};
  GetEnvironmentVariableA(variable, name, MAX_PATH);
  return OpenEventA(EVENT_ALL_ACCESS, FALSE, name);
}

}  // namespace

int WINAPI WinMain(HINSTANCE /*instance*/, HINSTANCE /*previous*/, LPSTR /*commandLine*/, int /*showCommand*/) {
  char path[MAX_PATH] = {};
  GetEnvironmentVariableA("KWA_TEST_PROCESS_FILE", path, MAX_PATH);
  if (std::FILE* const file = std::fopen(path, "w")) {
    std::fprintf(file, "%lu", GetCurrentProcessId());
    std::fclose(file);
  }
  const HANDLE started = OpenNamedEvent("KWA_TEST_STARTED");
  SetEvent(started);
  CloseHandle(started);
  const HANDLE end = OpenNamedEvent("KWA_TEST_END");
  WaitForSingleObject(end, INFINITE);
  CloseHandle(end);
  return 1;
}

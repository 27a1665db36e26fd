#include "windows_facts.h"

#include <windows.h>

namespace {

template <typename Function>
Function Find(const char* module, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA(module), name)));
}

}  // namespace

unsigned long WindowsMajorVersion() {
  // Knows no compatibility mode.
  const auto getVersion = Find<LONG(WINAPI*)(OSVERSIONINFOW*)>("ntdll.dll", "RtlGetVersion");
  OSVERSIONINFOW version = {};
  version.dwOSVersionInfoSize = sizeof version;
  getVersion(&version);
  return version.dwMajorVersion;
}

bool Is64Bit() {
  const auto isWow64Process = Find<BOOL(WINAPI*)(HANDLE, BOOL*)>("kernel32.dll", "IsWow64Process");
  BOOL isWow64 = FALSE;
  if (isWow64Process != nullptr) {
    isWow64Process(GetCurrentProcess(), &isWow64);
  }
  return isWow64 != FALSE;
}

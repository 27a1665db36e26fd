#include "windows_facts.h"

#include <windows.h>

unsigned long WindowsMajorVersion() {
  // Knows no compatibility mode.
  using GetVersionFunction = LONG(WINAPI*)(OSVERSIONINFOW*);
  const auto getVersion = reinterpret_cast<GetVersionFunction>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleA("ntdll.dll"), "RtlGetVersion")));
  OSVERSIONINFOW version = {};
  version.dwOSVersionInfoSize = sizeof version;
  getVersion(&version);
  return version.dwMajorVersion;
}

bool Is64Bit() {
  BOOL isWow64 = FALSE;
  IsWow64Process(GetCurrentProcess(), &isWow64);
  return isWow64 != FALSE;
}

#include "app/windows_bitness.h"

#include <windows.h>

namespace kwa {

int Is64BitWindows() {
  const HMODULE kernel = GetModuleHandleA("kernel32.dll");
  if (kernel == nullptr) {
    return 0;
  }
  // Looked up by name: Windows 2000 lacks it.
  using GetSystemWow64DirectoryFunction = UINT(WINAPI*)(LPWSTR, UINT);
  const auto getSystemWow64Directory = reinterpret_cast<GetSystemWow64DirectoryFunction>(
      reinterpret_cast<void*>(GetProcAddress(kernel, "GetSystemWow64DirectoryW")));
  if (getSystemWow64Directory == nullptr) {
    return 0;
  }
  // Only the success of the call matters, not the name of the folder.
  constexpr UINT kCapacity = 260;
  WCHAR folder[kCapacity];
  if (getSystemWow64Directory(folder, kCapacity) != 0) {
    return 1;
  }
  // 32-bit Windows fails with exactly this error. Any other error comes from a 64-bit Windows.
  return GetLastError() == ERROR_CALL_NOT_IMPLEMENTED ? 0 : 1;
}

}  // namespace kwa
